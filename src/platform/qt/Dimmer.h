#pragma once

#include <QWidget>

#include <vector>

namespace vorrano::qt {

// A veil in the window's colour over a screen's content, which goes on taking input. It follows its parent's size. Some
// widgets of the screen, wherever they are in it, are drawn once more above the veil: in a hole of the veil they would
// stand on a background of another colour.
class Dimmer final : public QWidget {
public:
    Dimmer(QWidget& over, std::vector<QWidget*> leftOut);

    // 0.0 lets everything be seen, 1.0 nothing.
    void setStrength(double strength);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const std::vector<QWidget*> m_leftOut;
    double m_strength = 0.0;
};

} // namespace vorrano::qt
