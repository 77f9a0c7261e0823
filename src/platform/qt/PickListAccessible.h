#pragma once

#include <QAccessibleWidget>

namespace vorrano::qt {

class PickList;

// A pick list on the accessibility bus: as Qt's own, and with two actions more, which choose the next and the previous
// entry. Over Qt's own a list can be opened, but nothing in it can be chosen.
class PickListAccessible final : public QAccessibleWidget {
public:
    explicit PickListAccessible(PickList& list);

    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* wanted) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QString text(QAccessible::Text kind) const override;
    QAccessible::State state() const override;

    QStringList actionNames() const override;
    void doAction(const QString& name) override;

private:
    void choose(int index);

    PickList& m_list;
};

// Lets a screen reader read out the entry that a key has chosen in a closed list that has the focus. It asks Qt for the
// chosen entry and gets none, so the entry is reported as if it had got the focus.
void reportChoice(const PickList& list, int index);

} // namespace vorrano::qt
