#include "platform/qt/FocusReports.h"

#include "platform/qt/TabWidget.h"

#include <QAccessible>
#include <QPointer>
#include <QWidget>

namespace vorrano::qt {

namespace {

void report(QAccessibleEvent* event);

// Who was told before, if anybody; else Qt tells the bus itself.
QAccessible::UpdateHandler s_next = nullptr;
// What has the focus, as far as the bus knows.
QPointer<QObject> s_focus;
// Whether Qt has yet to report that focus.
bool s_ahead = false;

void passOn(QAccessibleEvent* event)
{
    QAccessible::installUpdateHandler(s_next);
    QAccessible::updateAccessibility(event);
    QAccessible::installUpdateHandler(report);
}

bool hasUnreportedFocus(QObject* object)
{
    const auto* const widget = qobject_cast<QWidget*>(object);
    return widget != nullptr && widget->hasFocus() && object != s_focus;
}

void reportFocus(QAccessibleEvent* event)
{
    const bool known = s_ahead && event->object() == s_focus;
    s_ahead = false;
    if (known) {
        return;
    }
    s_focus = event->object();
    const auto* const bar = dynamic_cast<TabBar*>(event->object());
    if (bar != nullptr && event->child() < 0) {
        event->setChild(bar->currentIndex());
    }
    passOn(event);
}

void report(QAccessibleEvent* event)
{
    if (event->type() == QAccessible::Focus) {
        reportFocus(event);
        return;
    }
    const bool caret =
        event->type() == QAccessible::TextCaretMoved || event->type() == QAccessible::TextSelectionChanged;
    if (caret && hasUnreportedFocus(event->object())) {
        QAccessibleEvent focus(event->object(), QAccessible::Focus);
        reportFocus(&focus);
        s_ahead = true;
    }
    passOn(event);
}

} // namespace

void installFocusReports()
{
    const auto before = QAccessible::installUpdateHandler(report);
    if (before != report) {
        s_next = before;
    }
}

} // namespace vorrano::qt
