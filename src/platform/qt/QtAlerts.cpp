#include "platform/qt/QtAlerts.h"

#include "platform/qt/Outline.h"
#include "platform/qt/QtGate.h"
#include "platform/qt/QtLayouts.h"

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStyle>

#include <algorithm>
#include <vector>

namespace vorrano::qt {

namespace {

// Wide enough for a sentence to read well.
constexpr int kTextWidth = 320;

QString toQString(const std::optional<std::string>& text)
{
    return QString::fromStdString(text.value_or(std::string()));
}

// The title to the letter: a single ampersand would make the next character a mnemonic.
QString withAmpersandsEscaped(const std::string& text)
{
    return QString::fromStdString(text).replace(u'&', QStringLiteral("&&"));
}

// A message box that can be left without a choice only when it offers none.
class AlertBox final : public QMessageBox {
public:
    AlertBox(const QtGate& gate, const platform::Alert& alert, QWidget* parent)
        : QMessageBox(parent)
        , m_gate(gate)
    {
        setWindowTitle(QApplication::applicationDisplayName());
        // A screen reader reads the name, and then the other text from its label.
        setAccessibleName(toQString(alert.messageText));
        setText(toQString(alert.messageText));
        setInformativeText(toQString(alert.informativeText));
        makePlain("qt_msgbox_label", QFont::Bold);
        // The box finds the width of the message by itself, and would make the other text as narrow as a short one.
        if (auto* const label = makePlain("qt_msgbox_informativelabel", QFont::Normal)) {
            label->setMinimumWidth(kTextWidth);
        }
        showIcon(alert.style);
        for (const auto& title : alert.buttons) {
            m_buttons.push_back(addButton(withAmpersandsEscaped(title), QMessageBox::AcceptRole));
        }
        if (!m_buttons.empty()) {
            setDefaultButton(m_buttons.front());
        }
        if (hasChoice()) {
            // Without the customisation a window without close would be one with minimise and maximise on X11.
            setWindowFlag(Qt::CustomizeWindowHint);
            setWindowFlag(Qt::WindowCloseButtonHint, false);
        }
    }

    [[nodiscard]] int answer() const
    {
        const auto pressed = std::find(m_buttons.begin(), m_buttons.end(), clickedButton());
        return pressed == m_buttons.end() ? platform::kNoAnswer
                                          : platform::kAlertFirstButton + static_cast<int>(pressed - m_buttons.begin());
    }

    void done(int result) override
    {
        if (clickedButton() != nullptr || m_gate.isEnding()) {
            QMessageBox::done(result);
        }
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (hasChoice() && event->matches(QKeySequence::Cancel)) {
            event->accept();
            return;
        }
        QMessageBox::keyPressEvent(event);
    }

    void paintEvent(QPaintEvent* event) override
    {
        QMessageBox::paintEvent(event);
        outlineUnlessFramed(*this);
    }

    void closeEvent(QCloseEvent* event) override
    {
        event->ignore();
        if (m_buttons.size() == 1) {
            m_buttons.front()->click();
        }
    }

private:
    [[nodiscard]] bool hasChoice() const { return m_buttons.size() > 1; }

    // Neither text may be taken for markup; both can be selected.
    QLabel* makePlain(const char* labelName, QFont::Weight weight)
    {
        auto* const label = findChild<QLabel*>(QString::fromLatin1(labelName));
        if (label == nullptr) {
            return nullptr;
        }
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        QFont font = label->font();
        font.setWeight(weight);
        label->setFont(font);
        return label;
    }

    void showIcon(platform::AlertStyle style)
    {
        const QIcon icon = QApplication::windowIcon();
        if (style == platform::AlertStyle::Warning || icon.isNull()) {
            setIcon(style == platform::AlertStyle::Warning ? QMessageBox::Warning : QMessageBox::Information);
        } else {
            const int side = this->style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
            setIconPixmap(icon.pixmap(side));
        }
    }

    const QtGate& m_gate;
    std::vector<QPushButton*> m_buttons;
};

} // namespace

QtAlerts::QtAlerts(QtGate& gate, const QtLayouts& layouts)
    : m_gate(gate)
    , m_layouts(layouts)
{}

int QtAlerts::runModal(const platform::Alert& alert)
{
    if (m_gate.isEnding()) {
        return platform::kNoAnswer;
    }
    // A box goes with its window: it may be gone when its loop has ended.
    const QPointer<AlertBox> box = new AlertBox(m_gate, alert, m_layouts.keyWidget());
    m_gate.runModal(*box);
    const int answer = box ? box->answer() : platform::kNoAnswer;
    delete box;
    return answer;
}

} // namespace vorrano::qt
