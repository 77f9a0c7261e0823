#pragma once

#include <QWidget>

namespace vorrano::qt {

// A veil in the window's colour over a screen's content, which goes on taking input. It follows its parent's size.
class Dimmer final : public QWidget {
public:
    explicit Dimmer(QWidget& over);

    // 0.0 lets everything be seen, 1.0 nothing.
    void setStrength(double strength);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double m_strength = 0.0;
};

} // namespace vorrano::qt
