#pragma once

#include "simulator/control/Simulator.h"
#include "simulator/window/DeviceFace.h"
#include "simulator/window/WireText.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <QWidget>

class QFormLayout;

namespace vorrano::simulator {

// The simulated Vorrano on the desk: its face, a cable to pull and plug, a probe to warm, faults to choose from, and
// what passes on the line and to the service.
// Lifetime: the simulator outlives it.
class SimulatorWindow final : public QWidget {
public:
    explicit SimulatorWindow(Simulator& simulator);
    ~SimulatorWindow() override { m_simulator.setListener(nullptr); }

private:
    void build();
    [[nodiscard]] QFormLayout* form();
    void connectControls();
    void heard(const QJsonObject& event);
    void write(const QString& direction, const std::string& text);
    void refresh();

    Simulator& m_simulator;
    WireText m_wireText;
    // The direction of the line that is written last and may still grow.
    QString m_growing;
    DeviceFace m_face;
    QPushButton m_cable;
    QSlider m_probe;
    QComboBox m_faults;
    QPlainTextEdit m_wire;
};

} // namespace vorrano::simulator
