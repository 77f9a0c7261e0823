#pragma once

#include "platform/qt/QtControl.h"

#include <QLineEdit>
#include <QString>

namespace vorrano::qt {

// A text field. What changes the text while the field takes no input is undone.
class QtTextField final : public QtControl<platform::TextField, QLineEdit> {
public:
    QtTextField(QLineEdit& field, const QtSurroundings& surroundings);

    [[nodiscard]] std::string text() const override;
    void setText(const std::string& text) override;
    void onChange(platform::Action action) override;

private:
    void textChanged();
    void show(const QString& text, int cursor);

    platform::Action m_change;
    // The last text that counts, and where the cursor stood in it.
    QString m_text;
    int m_cursor = 0;
    bool m_ownChange = false;
};

// Where the cursor goes when `before` becomes `after`: behind the same character, if only characters were taken out;
// else to the end if it was there, else to the same place.
[[nodiscard]] int cursorAfterChange(const QString& before, const QString& after, int cursor);

} // namespace vorrano::qt
