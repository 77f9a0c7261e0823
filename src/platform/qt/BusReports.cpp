#include "platform/qt/BusReports.h"

#include "platform/qt/TabWidget.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QWidget>

#include <utility>

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
    if (s_next != nullptr) {
        s_next(event);
        return;
    }
    QAccessible::installUpdateHandler(nullptr);
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

// As many bullets, so that a reader counts what is typed, and the bus has no secret.
QString hidden(const QString& text) { return QString(text.size(), u'\u2022'); }

// A change of a text that its field does not show. False when the event is another one.
bool reportHiddenText(const QAccessibleEvent& event)
{
    auto* const field = qobject_cast<QLineEdit*>(event.object());
    if (field == nullptr || field->echoMode() == QLineEdit::Normal) {
        return false;
    }
    const auto tell = [&](auto report, const QAccessibleTextCursorEvent& of) {
        report.setCursorPosition(of.cursorPosition());
        passOn(&report);
        return true;
    };
    if (const auto* const typed = dynamic_cast<const QAccessibleTextInsertEvent*>(&event)) {
        return tell(QAccessibleTextInsertEvent(field, typed->changePosition(), hidden(typed->textInserted())), *typed);
    }
    if (const auto* const gone = dynamic_cast<const QAccessibleTextRemoveEvent*>(&event)) {
        return tell(QAccessibleTextRemoveEvent(field, gone->changePosition(), hidden(gone->textRemoved())), *gone);
    }
    if (const auto* const changed = dynamic_cast<const QAccessibleTextUpdateEvent*>(&event)) {
        return tell(QAccessibleTextUpdateEvent(field, changed->changePosition(), hidden(changed->textRemoved()),
                                               hidden(changed->textInserted())),
                    *changed);
    }
    return false;
}

bool isOfAnnouncedLabel(const QAccessibleEvent& event)
{
    const auto* const label = qobject_cast<QLabel*>(event.object());
    return label != nullptr && isAnnounced(*label);
}

// A bar that has not come to another tenth.
bool isSmallStep(const QAccessibleEvent& event)
{
    static QPointer<QObject> s_bar;
    static int s_tenth = -1;
    const auto* const bar = qobject_cast<QProgressBar*>(event.object());
    if (bar == nullptr || event.type() != QAccessible::ValueChanged || bar->maximum() <= 0) {
        return false;
    }
    const int tenth = static_cast<int>(10.0 * bar->value() / bar->maximum());
    return std::exchange(s_bar, event.object()) == event.object() && std::exchange(s_tenth, tenth) == tenth;
}

void reportText(QObject* label)
{
    QAccessibleEvent name(label, QAccessible::NameChanged);
    passOn(&name);
}

void report(QAccessibleEvent* event)
{
    if (event->type() == QAccessible::Focus) {
        reportFocus(event);
        return;
    }
    if (isSmallStep(*event) || reportHiddenText(*event)) {
        return;
    }
    if (isOfAnnouncedLabel(*event) && event->type() == QAccessible::NameChanged) {
        return;
    }
    if (isOfAnnouncedLabel(*event) && event->type() == QAccessible::ObjectShow) {
        reportText(event->object());
    }
    const bool caret =
        event->type() == QAccessible::TextCaretMoved || event->type() == QAccessible::TextSelectionChanged;
    if (caret && hasUnreportedFocus(event->object())) {
        QAccessibleEvent focus(event->object(), QAccessible::Focus);
        reportFocus(&focus);
        s_ahead = true;
        // Qt reports it in the call that gave the focus. Later it would be another time.
        QMetaObject::invokeMethod(
            qApp, [] { s_ahead = false; }, Qt::QueuedConnection);
    }
    passOn(event);
}

} // namespace

bool isAnnounced(const QLabel& label) { return label.property("announced").toBool(); }

// There is no other event that a screen reader reads a label out for.
void announce(QLabel& label)
{
    QAccessibleEvent shown(&label, QAccessible::ObjectShow);
    QAccessible::updateAccessibility(&shown);
}

void installBusReports()
{
    const auto before = QAccessible::installUpdateHandler(report);
    if (before != report) {
        s_next = before;
    }
}

} // namespace vorrano::qt
