#pragma once

#include "simulator/control/ControlServer.h"
#include "simulator/device/SimulatedVorrano.h"
#include "simulator/line/PtyLine.h"
#include "simulator/service/HttpServer.h"
#include "simulator/service/SimulatedService.h"

#include <QTimer>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace vorrano::simulator {

struct Settings {
    std::string controlPath;
    std::string serialNumber = "A1B2";
    std::uint16_t httpPort = 0;
    bool pluggedIn = true;
    // An account that is there from the start: its name, and its password.
    std::string accountName;
    std::string accountPassword;
};

// A Vorrano on its cable, the vendor's web service, and the control socket that tells of both and orders what happens
// to them. What can be asked for is listed in simulator/README.md.
// Threads: the one of the event loop.
class Simulator {
public:
    // Throws std::exception when a socket or a pseudo-terminal can't be made.
    explicit Simulator(const Settings& settings);
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // Everything there is to know.
    [[nodiscard]] QJsonObject state() const;

    void plug();
    void unplug();
    [[nodiscard]] bool isPlugged() const { return m_line.isPlugged(); }

    [[nodiscard]] const SimulatedVorrano& device() const { return m_device; }
    [[nodiscard]] const SimulatedService& service() const { return m_service; }
    void setMemory(const Memory& memory);
    // All earlier faults go; with none the device is well.
    void setOnlyFault(const std::optional<Fault>& fault);

    // Hears the events that the control socket tells of.
    void setListener(std::function<void(const QJsonObject& event)> listener) { m_listener = std::move(listener); }

private:
    void publish(const QJsonObject& event);
    [[nodiscard]] QJsonObject handle(const QJsonObject& request);
    void handleServiceOrder(const QString& what, const QJsonObject& request);
    void received(const std::string& bytes);
    void deviceActed();
    void tick();

    std::string m_serialNumber;
    SimulatedVorrano m_device;
    SimulatedService m_service;
    PtyLine m_line;
    HttpServer m_http;
    ControlServer m_control;
    QTimer m_tick;
    std::function<void(const QJsonObject& event)> m_listener;
};

} // namespace vorrano::simulator
