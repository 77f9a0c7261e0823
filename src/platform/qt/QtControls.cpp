#include "platform/qt/QtControls.h"

#include <utility>

namespace vorrano::qt {

QtButton::QtButton(QAbstractButton& button, const QtSurroundings& surroundings)
    : QtControl(button, surroundings)
{
    QObject::connect(&button, &QAbstractButton::clicked, context(), [this] {
        if (letsThrough()) {
            deliver(m_press);
        }
    });
}

void QtButton::onPress(platform::Action action) { m_press = std::move(action); }

void QtLabel::setText(const std::string& text)
{
    widget().setTextFormat(Qt::PlainText);
    widget().setText(QString::fromStdString(text));
}

void QtProgressIndicator::startAnimation() { widget().start(); }

void QtProgressIndicator::stopAnimation() { widget().stop(); }

bool QtProgressIndicator::isAnimating() const { return widget().isTurning(); }

} // namespace vorrano::qt
