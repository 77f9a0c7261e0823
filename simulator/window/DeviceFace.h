#pragma once

#include "simulator/device/SimulatedVorrano.h"

#include <QLabel>
#include <QProgressBar>
#include <QWidget>

namespace vorrano::simulator {

// The simulated Vorrano as an object: its case, its screen and its cable.
class DeviceFace final : public QWidget {
public:
    explicit DeviceFace(QWidget* parent = nullptr);

    // What the device is at now.
    void display(const SimulatedVorrano& vorrano, bool plugged);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QRectF caseRect() const;
    [[nodiscard]] QRect screenRect() const;
    void paintCable(QPainter& painter) const;
    void paintCase(QPainter& painter) const;

    QWidget m_screen;
    QLabel m_temperature;
    QLabel m_network;
    QLabel m_status;
    QProgressBar m_progress;
    bool m_plugged = false;
};

} // namespace vorrano::simulator
