#pragma once

#include "platform/qt/QtControl.h"
#include "platform/qt/Spinner.h"

#include <QAbstractButton>
#include <QLabel>

namespace vorrano::qt {

class QtButton final : public QtControl<platform::Button, QAbstractButton> {
public:
    QtButton(QAbstractButton& button, const QtSurroundings& surroundings);

    void onPress(platform::Action action) override;

private:
    platform::Action m_press;
    bool m_pressCounts = false;
};

class QtLabel final : public QtControl<platform::Label, QLabel> {
public:
    using QtControl::QtControl;

    void setText(const std::string& text) override;
};

class QtProgressIndicator final : public QtControl<platform::ProgressIndicator, Spinner> {
public:
    using QtControl::QtControl;

    void startAnimation() override;
    void stopAnimation() override;
    [[nodiscard]] bool isAnimating() const override;
};

} // namespace vorrano::qt
