#include "simulator/window/DeviceFace.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

namespace vorrano::simulator {
namespace {

using Mode = SimulatedVorrano::Mode;

constexpr int kHeight = 360;
constexpr double kCaseWidth = 232;
constexpr double kCaseHeight = 250;
constexpr double kCaseRadius = 34;
constexpr double kPlugGap = 26;
constexpr int kScreenMargin = 10;

const QColor kCableColour(0x3A, 0x44, 0x4D);

QString temperatureOf(const Memory& memory)
{
    const double celsius = (memory.fahrenheit - 32.0) / 1.8;
    const double shown = memory.unit == 0 ? memory.fahrenheit : celsius;
    return QStringLiteral("%1 \u00B0%2").arg(shown, 0, 'f', 1).arg(QChar(memory.unit == 0 ? u'F' : u'C'));
}

QString networkOf(const Memory& memory)
{
    auto name = QString::fromStdString(memory.ssid);
    name.replace(u'$', u' ');
    return memory.connected ? QStringLiteral("On %1").arg(name) : QStringLiteral("Network: %1").arg(name);
}

QString statusOf(const SimulatedVorrano& vorrano, bool plugged)
{
    switch (vorrano.mode()) {
    case Mode::Restarting:
        return QStringLiteral("Starting...");
    case Mode::Bootloader:
        return QStringLiteral("Bootloader: waiting");
    case Mode::Image:
        return QStringLiteral("Bootloader: %L1 bytes").arg(vorrano.image().bytes.size());
    case Mode::Normal:
        break;
    }
    return plugged ? QStringLiteral("PC Connected...") : QStringLiteral("On its own");
}

void dress(QLabel& label, int points, const char* colour)
{
    auto font = label.font();
    font.setPointSize(points);
    label.setFont(font);
    label.setAlignment(Qt::AlignCenter);
    label.setTextFormat(Qt::PlainText);
    label.setStyleSheet(QStringLiteral("color: %1; background: transparent;").arg(QLatin1String(colour)));
}

// What is too long for the screen ends in dots; a screen reader reads all of it.
void write(QLabel& label, const QString& text, int width)
{
    label.setText(label.fontMetrics().elidedText(text, Qt::ElideRight, width));
    label.setAccessibleName(text);
}

} // namespace

DeviceFace::DeviceFace(QWidget* parent)
    : QWidget(parent)
    , m_screen(this)
{
    setFixedHeight(kHeight);
    setAccessibleName(QStringLiteral("Simulated Vorrano"));
    dress(m_temperature, 28, "#FFC27A");
    dress(m_network, 10, "#9ED8FF");
    dress(m_status, 10, "#A9E8A0");
    m_temperature.setAccessibleDescription(QStringLiteral("Temperature"));
    m_network.setAccessibleDescription(QStringLiteral("Network"));
    m_status.setAccessibleDescription(QStringLiteral("Status"));
    m_progress.setAccessibleName(QStringLiteral("Image received"));
    m_progress.setTextVisible(false);
    m_progress.setFixedHeight(8);
    m_progress.setStyleSheet(QStringLiteral("QProgressBar { background: #22343F; border: none; border-radius: 4px; }"
                                            "QProgressBar::chunk { background: #FFC27A; border-radius: 4px; }"));
    auto policy = m_progress.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_progress.setSizePolicy(policy);

    auto* const rows = new QVBoxLayout(&m_screen);
    rows->setContentsMargins(kScreenMargin, 16, kScreenMargin, 12);
    for (QWidget* row : std::initializer_list<QWidget*>{&m_network, &m_temperature, &m_status, &m_progress}) {
        rows->addWidget(row);
    }
}

void DeviceFace::resizeEvent(QResizeEvent*) { m_screen.setGeometry(screenRect()); }

QRectF DeviceFace::caseRect() const { return {(width() - kCaseWidth) / 2, 12, kCaseWidth, kCaseHeight}; }

QRect DeviceFace::screenRect() const { return caseRect().adjusted(20, 22, -20, -56).toRect(); }

void DeviceFace::display(const SimulatedVorrano& vorrano, bool plugged)
{
    m_temperature.setText(temperatureOf(vorrano.memory()));
    const int width = screenRect().width() - 2 * kScreenMargin;
    write(m_network, networkOf(vorrano.memory()), width);
    write(m_status, statusOf(vorrano, plugged), width);
    m_progress.setVisible(vorrano.mode() == Mode::Image);
    // A new image is about as large as the one that it replaces.
    m_progress.setMaximum(static_cast<int>(vorrano.memory().firmwareSize));
    m_progress.setValue(static_cast<int>(std::min(vorrano.image().bytes.size(), vorrano.memory().firmwareSize)));
    m_plugged = plugged;
    update();
}

void DeviceFace::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintCable(painter);
    paintCase(painter);
}

void DeviceFace::paintCable(QPainter& painter) const
{
    const auto body = caseRect();
    const double x = body.center().x();
    const double top = body.bottom() + (m_plugged ? -2 : kPlugGap);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xB9, 0xC2, 0xC9));
    painter.drawRect(QRectF(x - 9, top, 18, 14));
    painter.setBrush(kCableColour);
    painter.drawRoundedRect(QRectF(x - 14, top + 12, 28, 30), 5, 5);
    QPainterPath cable(QPointF(x, top + 40));
    cable.cubicTo(x, height() - 4.0, x - 90, height() - 34.0, -10, height() - 14.0);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(kCableColour, 7, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(cable);
}

void DeviceFace::paintCase(QPainter& painter) const
{
    const auto body = caseRect();
    QLinearGradient shell(body.topLeft(), body.bottomRight());
    shell.setColorAt(0, QColor(0xFF, 0xFF, 0xFF));
    shell.setColorAt(1, QColor(0xD5, 0xDB, 0xE0));
    painter.setPen(QPen(QColor(0xA8, 0xB2, 0xBA), 1.5));
    painter.setBrush(shell);
    painter.drawRoundedRect(body, kCaseRadius, kCaseRadius);

    const auto glass = QRectF(m_screen.geometry());
    QLinearGradient dark(glass.topLeft(), glass.bottomLeft());
    dark.setColorAt(0, QColor(0x17, 0x2A, 0x36));
    dark.setColorAt(1, QColor(0x0B, 0x16, 0x1E));
    painter.setPen(QPen(QColor(0x5B, 0x6B, 0x76), 2));
    painter.setBrush(dark);
    painter.drawRoundedRect(glass, 14, 14);

    auto font = this->font();
    font.setPointSize(13);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 3);
    painter.setFont(font);
    painter.setPen(QColor(0x6B, 0x78, 0x83));
    painter.drawText(QRectF(body.left(), glass.bottom(), body.width(), body.bottom() - glass.bottom()), Qt::AlignCenter,
                     QStringLiteral("Vorrano"));
}

} // namespace vorrano::simulator
