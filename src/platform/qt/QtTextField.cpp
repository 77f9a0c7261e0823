#include "platform/qt/QtTextField.h"

#include <algorithm>
#include <utility>

namespace vorrano::qt {

int cursorAfterChange(const QString& before, const QString& after, int cursor)
{
    qsizetype kept = 0;
    qsizetype keptBeforeCursor = 0;
    for (qsizetype i = 0; i < before.size(); ++i) {
        if (i == cursor) {
            keptBeforeCursor = kept;
        }
        if (kept < after.size() && before[i] == after[kept]) {
            ++kept;
        }
    }
    if (cursor >= before.size()) {
        return static_cast<int>(after.size());
    }
    return static_cast<int>(kept == after.size() ? keptBeforeCursor : std::min<qsizetype>(cursor, after.size()));
}

QtTextField::QtTextField(QLineEdit& field, const QtSurroundings& surroundings)
    : QtControl(field, surroundings)
    , m_text(field.text())
    , m_cursor(field.cursorPosition())
{
    // Not textEdited(): a change over the accessibility bus is none to Qt.
    QObject::connect(&field, &QLineEdit::textChanged, context(), [this] { textChanged(); });
    QObject::connect(&field, &QLineEdit::cursorPositionChanged, context(), [this](int, int cursor) {
        if (widget().text() == m_text) {
            m_cursor = cursor;
        }
    });
}

std::string QtTextField::text() const { return m_text.toStdString(); }

void QtTextField::setText(const std::string& text)
{
    const QString wanted = QString::fromStdString(text);
    if (wanted != m_text) {
        show(wanted, cursorAfterChange(m_text, wanted, widget().cursorPosition()));
    }
}

void QtTextField::onChange(platform::Action action) { m_change = std::move(action); }

void QtTextField::textChanged()
{
    if (m_ownChange) {
        return;
    }
    if (!takesInput()) {
        show(m_text, m_cursor);
        return;
    }
    m_text = widget().text();
    m_cursor = widget().cursorPosition();
    deliver(m_change);
}

void QtTextField::show(const QString& text, int cursor)
{
    m_ownChange = true;
    widget().setText(text);
    m_text = widget().text();
    widget().setCursorPosition(cursor);
    m_cursor = widget().cursorPosition();
    m_ownChange = false;
}

} // namespace vorrano::qt
