#include "platform/qt/Spinner.h"

#include <QEvent>
#include <QPainter>
#include <QTimerEvent>

namespace vorrano::qt {

namespace {

constexpr int kSide = 48;
constexpr int kSpokes = 12;
constexpr int kMillisecondsPerStep = 80;

} // namespace

Spinner::Spinner(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFixedSize(kSide, kSide);
    if (parent != nullptr) {
        parent->installEventFilter(this);
    }
    hide();
}

void Spinner::start()
{
    m_turning = true;
    turnWhileSeen();
}

void Spinner::stop()
{
    m_turning = false;
    turnWhileSeen();
}

QSize Spinner::sizeHint() const { return {kSide, kSide}; }

bool Spinner::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parent() && event->type() == QEvent::Resize) {
        centre();
    }
    return QWidget::eventFilter(watched, event);
}

void Spinner::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    painter.setPen(Qt::NoPen);
    QColor colour = palette().color(QPalette::WindowText);
    for (int spoke = 0; spoke < kSpokes; ++spoke) {
        // The spoke that m_step stands at is the darkest; the ones behind it fade.
        const int age = (m_step - spoke + kSpokes) % kSpokes;
        colour.setAlphaF(static_cast<float>(1.0 - 0.85 * age / (kSpokes - 1)));
        painter.setBrush(colour);
        painter.save();
        painter.rotate(spoke * 360.0 / kSpokes);
        painter.drawRoundedRect(QRectF(-1.75, -21.0, 3.5, 10.0), 1.75, 1.75);
        painter.restore();
    }
}

void Spinner::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    m_step = (m_step + 1) % kSpokes;
    update();
}

void Spinner::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    centre();
    raise();
    turnWhileSeen();
}

void Spinner::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    turnWhileSeen();
}

void Spinner::centre()
{
    if (parentWidget() != nullptr) {
        move(parentWidget()->rect().center() - rect().center());
    }
}

void Spinner::turnWhileSeen()
{
    if (m_turning && isVisible()) {
        m_timer.start(kMillisecondsPerStep, this);
    } else {
        m_timer.stop();
    }
}

} // namespace vorrano::qt
