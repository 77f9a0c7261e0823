#pragma once

#include <QAccessibleWidget>
#include <QLineEdit>

namespace vorrano::qt {

// A text field on the accessibility bus: as Qt's own, but its text is one run. Qt 6.4 gives each character a run of no
// length, and a screen reader that puts the runs together then leaves the last character out.
class FieldAccessible final : public QAccessibleWidget,
                              public QAccessibleTextInterface,
                              public QAccessibleEditableTextInterface {
public:
    explicit FieldAccessible(QLineEdit& field);

    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text kind, const QString& text) override;
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    int selectionCount() const override;
    void selection(int index, int* start, int* end) const override;
    void addSelection(int start, int end) override;
    void setSelection(int index, int start, int end) override;
    void removeSelection(int index) override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override;
    int characterCount() const override;
    QString text(int start, int end) const override;
    QString attributes(int offset, int* start, int* end) const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint& point) const override;
    void scrollToSubstring(int start, int end) override;

    void deleteText(int start, int end) override;
    void insertText(int offset, const QString& text) override;
    void replaceText(int start, int end, const QString& text) override;

private:
    // Nothing of what is not to be seen.
    [[nodiscard]] QString shown() const;

    QLineEdit& m_field;
};

} // namespace vorrano::qt
