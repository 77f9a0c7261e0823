#include "platform/qt/Dimmer.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>

#include <utility>

namespace vorrano::qt {

namespace {

// Without the background.
QPixmap pictureOf(QWidget& widget)
{
    QPixmap picture(widget.size() * widget.devicePixelRatioF());
    picture.setDevicePixelRatio(widget.devicePixelRatioF());
    picture.fill(Qt::transparent);
    widget.render(&picture, {}, {}, QWidget::DrawChildren);
    return picture;
}

} // namespace

Dimmer::Dimmer(QWidget& over, std::vector<QWidget*> leftOut)
    : QWidget(&over)
    , m_leftOut(std::move(leftOut))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    over.installEventFilter(this);
    hide();
}

void Dimmer::setStrength(double strength)
{
    m_strength = strength;
    setGeometry(parentWidget()->rect());
    setVisible(strength > 0.0);
    raise();
    update();
}

bool Dimmer::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parent() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

void Dimmer::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    QColor colour = palette().color(QPalette::Window);
    colour.setAlphaF(static_cast<float>(m_strength));
    painter.fillRect(rect(), colour);
    for (auto* const widget : m_leftOut) {
        const QRect place(widget->mapTo(parentWidget(), QPoint()), widget->size());
        // The sign that turns has this painted many times a second.
        if (widget->isVisible() && event->region().intersects(place)) {
            painter.drawPixmap(place.topLeft(), pictureOf(*widget));
        }
    }
}

} // namespace vorrano::qt
