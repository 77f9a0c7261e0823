#include "platform/qt/Dimmer.h"

#include <QEvent>
#include <QPainter>

#include <utility>

namespace vorrano::qt {

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

void Dimmer::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QColor colour = palette().color(QPalette::Window);
    colour.setAlphaF(static_cast<float>(m_strength));
    QRegion veiled(rect());
    for (const auto* const widget : m_leftOut) {
        if (widget->isVisible()) {
            veiled -= QRect(widget->mapTo(parentWidget(), QPoint()), widget->size());
        }
    }
    painter.setClipRegion(veiled);
    painter.fillRect(rect(), colour);
}

} // namespace vorrano::qt
