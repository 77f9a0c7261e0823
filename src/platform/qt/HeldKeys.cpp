#include "platform/qt/HeldKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace vorrano::qt {

namespace {

// A window passes the key on to the widget with the focus.
const QWidget* whoGets(const QObject& receiver)
{
    if (receiver.isWidgetType()) {
        return static_cast<const QWidget*>(&receiver);
    }
    const auto* const list = QApplication::activePopupWidget();
    const auto* const inner = list == nullptr ? QApplication::focusWidget() : list->focusWidget();
    return inner == nullptr ? list : inner;
}

bool takesText(const QObject& receiver)
{
    const auto* const widget = whoGets(receiver);
    return widget == nullptr || widget->testAttribute(Qt::WA_InputMethodEnabled);
}

// Whether the key does more there than type and move.
bool acts(const QKeyEvent& press, const QObject& receiver)
{
    if (press.modifiers().testFlag(Qt::AltModifier)) {
        return true;
    }
    switch (press.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
    case Qt::Key_F4: // opens and closes a pick list
        return true;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return press.modifiers().testFlag(Qt::ControlModifier);
    default:
        // A letter may press a button of a message, Space any.
        return !press.text().isEmpty() && press.text().front().isPrint() && !takesText(receiver);
    }
}

} // namespace

bool HeldKeys::holdsBack(const QObject& receiver, const QEvent& event)
{
    switch (event.type()) {
    case QEvent::KeyRelease:
        // A copy has no time.
        if (const auto& release = static_cast<const QKeyEvent&>(event);
            !release.isAutoRepeat() && release.timestamp() != 0) {
            m_releasedKey = release.nativeScanCode();
            m_releasedAt = release.timestamp();
        }
        return false;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        m_repeats = isRepetition(static_cast<const QKeyEvent&>(event));
        return m_repeats && acts(static_cast<const QKeyEvent&>(event), receiver);
    case QEvent::Shortcut:
        return m_repeats;
    default:
        return false;
    }
}

bool HeldKeys::isRepetition(const QKeyEvent& press) const
{
    // The X server sends a repetition as a release and a press of the same time. Qt marks the two only when it finds
    // the press in its queue already; about every fifth comes too late for that.
    const bool followsItsRelease =
        m_releasedKey != 0 && press.nativeScanCode() == m_releasedKey && press.timestamp() == m_releasedAt;
    return press.isAutoRepeat() || followsItsRelease;
}

} // namespace vorrano::qt
