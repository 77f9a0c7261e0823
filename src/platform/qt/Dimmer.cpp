#include "platform/qt/Dimmer.h"

#include <QEvent>
#include <QPainter>

namespace vorrano::qt {

Dimmer::Dimmer(QWidget& over)
    : QWidget(&over)
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
    painter.fillRect(rect(), colour);
}

} // namespace vorrano::qt
