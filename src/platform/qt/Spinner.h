#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace vorrano::qt {

// A busy indicator that turns in the middle of its parent, above what else is there. It needs no place in a layout.
class Spinner final : public QWidget {
public:
    explicit Spinner(QWidget* parent = nullptr);

    void start();
    void stop();
    [[nodiscard]] bool isTurning() const { return m_turning; }

    [[nodiscard]] QSize sizeHint() const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void centre();
    void turnWhileSeen();

    QBasicTimer m_timer;
    int m_step = 0;
    bool m_turning = false;
};

} // namespace vorrano::qt
