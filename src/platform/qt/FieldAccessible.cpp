#include "platform/qt/FieldAccessible.h"

#include <algorithm>

namespace vorrano::qt {

namespace {

struct Part {
    int start;
    int end;
};

// Whoever asks over the bus may name any places: what lies outside of the text is its beginning or its end, and a
// negative end is the end, too.
Part within(const QString& text, int start, int end)
{
    const int size = static_cast<int>(text.size());
    const int first = std::clamp(start, 0, size);
    return {first, end < 0 ? size : std::clamp(end, first, size)};
}

} // namespace

FieldAccessible::FieldAccessible(QLineEdit& field)
    : QAccessibleWidget(&field, QAccessible::EditableText)
    , m_field(field)
{}

QString FieldAccessible::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Value) {
        // What stands for a hidden text says how long it is, as on the screen.
        return m_field.displayText();
    }
    const QString said = QAccessibleWidget::text(kind);
    return said.isEmpty() && kind == QAccessible::Description ? m_field.placeholderText() : said;
}

void FieldAccessible::setText(QAccessible::Text kind, const QString& text)
{
    if (kind == QAccessible::Value) {
        m_field.setText(text);
    } else {
        QAccessibleWidget::setText(kind, text);
    }
}

QAccessible::State FieldAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.readOnly = m_field.isReadOnly();
    state.editable = !m_field.isReadOnly();
    state.passwordEdit = m_field.echoMode() != QLineEdit::Normal;
    state.selectableText = true;
    return state;
}

void* FieldAccessible::interface_cast(QAccessible::InterfaceType type)
{
    switch (type) {
    case QAccessible::TextInterface:
        return static_cast<QAccessibleTextInterface*>(this);
    case QAccessible::EditableTextInterface:
        return static_cast<QAccessibleEditableTextInterface*>(this);
    default:
        return QAccessibleWidget::interface_cast(type);
    }
}

int FieldAccessible::selectionCount() const { return m_field.hasSelectedText() ? 1 : 0; }

void FieldAccessible::selection(int index, int* start, int* end) const
{
    const bool selected = index == 0 && m_field.hasSelectedText();
    *start = selected ? m_field.selectionStart() : 0;
    *end = selected ? m_field.selectionEnd() : 0;
}

void FieldAccessible::addSelection(int start, int end) { setSelection(0, start, end); }

void FieldAccessible::setSelection(int index, int start, int end)
{
    if (index == 0) {
        const auto part = within(m_field.text(), start, end);
        m_field.setSelection(part.start, part.end - part.start);
    }
}

void FieldAccessible::removeSelection(int index)
{
    if (index == 0) {
        m_field.deselect();
    }
}

int FieldAccessible::cursorPosition() const { return m_field.cursorPosition(); }

void FieldAccessible::setCursorPosition(int position) { m_field.setCursorPosition(position); }

int FieldAccessible::characterCount() const { return static_cast<int>(m_field.text().size()); }

QString FieldAccessible::text(int start, int end) const
{
    const QString text = shown();
    const auto part = within(text, start, end);
    return text.mid(part.start, part.end - part.start);
}

QString FieldAccessible::attributes(int /*offset*/, int* start, int* end) const
{
    *start = 0;
    *end = characterCount();
    return {};
}

QRect FieldAccessible::characterRect(int offset) const
{
    // What is seen of the text may begin in its middle: its place is known from the cursor's.
    const auto metrics = m_field.fontMetrics();
    const auto widthBefore = [&](int end) { return metrics.horizontalAdvance(m_field.displayText().left(end)); };
    const QRect cursor = m_field.inputMethodQuery(Qt::ImCursorRectangle).toRect();
    const QPoint place(cursor.center().x() + widthBefore(offset) - widthBefore(m_field.cursorPosition()), cursor.y());
    return {m_field.mapToGlobal(place), QSize(widthBefore(offset + 1) - widthBefore(offset), metrics.height())};
}

int FieldAccessible::offsetAtPoint(const QPoint& point) const
{
    return m_field.cursorPositionAt(m_field.mapFromGlobal(point));
}

void FieldAccessible::scrollToSubstring(int start, int end)
{
    m_field.setCursorPosition(end);
    m_field.setCursorPosition(start);
}

void FieldAccessible::deleteText(int start, int end) { replaceText(start, end, QString()); }

void FieldAccessible::insertText(int offset, const QString& text) { replaceText(offset, offset, text); }

void FieldAccessible::replaceText(int start, int end, const QString& text)
{
    QString all = m_field.text();
    const auto part = within(all, start, end);
    m_field.setText(all.replace(part.start, part.end - part.start, text));
}

QString FieldAccessible::shown() const { return m_field.echoMode() == QLineEdit::Normal ? m_field.text() : QString(); }

} // namespace vorrano::qt
