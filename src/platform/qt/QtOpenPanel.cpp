#include "platform/qt/QtOpenPanel.h"

#include "platform/qt/QtGate.h"
#include "platform/qt/QtLayouts.h"

#include <QFileDialog>
#include <QPointer>
#include <QSettings>
#include <QStandardPaths>

namespace vorrano::qt {

QtOpenPanel::QtOpenPanel(QtGate& gate, const QtLayouts& layouts)
    : m_gate(gate)
    , m_layouts(layouts)
{}

std::vector<std::filesystem::path> QtOpenPanel::runModal()
{
    if (m_gate.isEnding()) {
        return {};
    }
    // Qt's own dialog would write its history into a settings file.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
    const QPointer<QFileDialog> panel = new QFileDialog(m_layouts.keyWidget());
    panel->setAcceptMode(QFileDialog::AcceptOpen);
    panel->setFileMode(QFileDialog::ExistingFile);
    panel->setOption(QFileDialog::ReadOnly);
    panel->setDirectory(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    m_gate.runModal(*panel);
    std::vector<std::filesystem::path> chosen;
    if (panel && panel->result() == QDialog::Accepted && !m_gate.isEnding()) {
        for (const QString& file : panel->selectedFiles()) {
            chosen.emplace_back(file.toStdString());
        }
    }
    delete panel;
    return chosen;
}

} // namespace vorrano::qt
