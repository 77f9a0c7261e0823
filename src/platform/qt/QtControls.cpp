#include "platform/qt/QtControls.h"

#include "platform/qt/BusReports.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace vorrano::qt {

namespace {

int saturated(std::size_t value) { return static_cast<int>(std::min<std::size_t>(value, INT_MAX)); }

} // namespace

QtButton::QtButton(QAbstractButton& button, const QtSurroundings& surroundings)
    : QtControl(button, surroundings)
{
    // A button that is pressed over the accessibility bus stays down for 0.1 s and is clicked then. Both have to count:
    // what was pressed under an alert does nothing after it.
    QObject::connect(&button, &QAbstractButton::pressed, context(), [this] { m_pressCounts = takesInput(); });
    QObject::connect(&button, &QAbstractButton::clicked, context(), [this] {
        if (m_pressCounts && takesInput()) {
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

void QtLabel::announce()
{
    if (widget().isVisible()) {
        qt::announce(widget());
    }
}

void QtProgressBar::setProgress(std::size_t done, std::size_t all)
{
    widget().setRange(0, saturated(all));
    widget().setValue(saturated(done));
}

void QtProgressIndicator::startAnimation() { widget().start(); }

void QtProgressIndicator::stopAnimation() { widget().stop(); }

bool QtProgressIndicator::isAnimating() const { return widget().isTurning(); }

} // namespace vorrano::qt
