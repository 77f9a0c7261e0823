#include "platform/qt/QtGate.h"

#include "platform/qt/QtMainQueue.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>

namespace vorrano::qt {

using platform::Subscription;

QtGate::QtGate(QtMainQueue& queue)
    : m_queue(queue)
{}

bool QtGate::takesInput(const QWidget& widget) const
{
    const auto blocked = std::find(m_blocked.begin(), m_blocked.end(), widget.window()) != m_blocked.end();
    return m_shut == 0 && m_dialogs.empty() && !blocked;
}

Subscription QtGate::block(const QWidget& window)
{
    m_blocked.push_back(&window);
    return Subscription([this, &window] {
        const auto found = std::find(m_blocked.begin(), m_blocked.end(), &window);
        if (found != m_blocked.end()) {
            m_blocked.erase(found);
        }
    });
}

Subscription QtGate::shut()
{
    ++m_shut;
    return Subscription([this] { --m_shut; });
}

void QtGate::runModal(QDialog& dialog)
{
    if (m_ending) {
        return;
    }
    // An open pick list would keep the pointer to itself.
    while (auto* const popup = QApplication::activePopupWidget()) {
        if (!popup->close()) {
            break;
        }
    }
    const auto hold = m_queue.hold();
    enableTopmost(false);
    m_dialogs.emplace_back(&dialog);
    const Subscription leave([this] {
        m_dialogs.pop_back();
        enableTopmost(true);
    });
    dialog.exec();
}

void QtGate::enableTopmost(bool enabled)
{
    if (!m_dialogs.empty() && m_dialogs.back()) {
        m_dialogs.back()->setEnabled(enabled);
    }
}

void QtGate::end()
{
    m_ending = true;
    // A panel may have a message of its own on top.
    for (auto* const window : QApplication::topLevelWidgets()) {
        auto* const dialog = qobject_cast<QDialog*>(window);
        if (dialog != nullptr && dialog->isModal() && dialog->isVisible()) {
            dialog->reject();
        }
    }
}

} // namespace vorrano::qt
