#include "platform/qt/PickListAccessible.h"

#include "platform/qt/PickList.h"

#include <QAbstractItemView>

namespace vorrano::qt {

PickListAccessible::PickListAccessible(PickList& list)
    : QAccessibleWidget(&list, QAccessible::ComboBox)
    , m_list(list)
{}

int PickListAccessible::childCount() const { return 1; }

QAccessibleInterface* PickListAccessible::child(int index) const
{
    return index == 0 ? QAccessible::queryAccessibleInterface(m_list.view()) : nullptr;
}

int PickListAccessible::indexOfChild(const QAccessibleInterface* wanted) const { return wanted == child(0) ? 0 : -1; }

// The entries are in a window of their own.
QAccessibleInterface* PickListAccessible::childAt(int, int) const { return nullptr; }

QString PickListAccessible::text(QAccessible::Text kind) const
{
    const bool shown = kind == QAccessible::Name || kind == QAccessible::Value;
    if (shown && !m_list.currentText().isEmpty()) {
        return m_list.currentText();
    }
    return QAccessibleWidget::text(kind);
}

QAccessible::State PickListAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.expandable = true;
    state.expanded = m_list.view()->isVisible();
    return state;
}

QStringList PickListAccessible::actionNames() const
{
    return {showMenuAction(), pressAction(), increaseAction(), decreaseAction(), setFocusAction()};
}

void PickListAccessible::doAction(const QString& name)
{
    if (name == increaseAction()) {
        choose(m_list.currentIndex() + 1);
    } else if (name == decreaseAction()) {
        choose(m_list.currentIndex() - 1);
    } else if (name != showMenuAction() && name != pressAction()) {
        QAccessibleWidget::doAction(name);
    } else if (m_list.view()->isVisible()) {
        m_list.hidePopup();
    } else {
        m_list.showPopup();
    }
}

void PickListAccessible::choose(int index)
{
    if (m_list.isEnabled() && index >= 0 && index < m_list.count()) {
        m_list.setCurrentIndex(index);
    }
}

void reportChoice(const PickList& list, int index)
{
    if (index < 0 || !list.hasFocus() || list.view()->isVisible()) {
        return;
    }
    QAccessibleEvent focus(list.view(), QAccessible::Focus);
    focus.setChild(index);
    QAccessible::updateAccessibility(&focus);
}

} // namespace vorrano::qt
