#pragma once

#include "simulator/device/SimulatedVorrano.h"
#include "support/World.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace vorrano::campaign {

// A simulated Vorrano on the cable of a world: what it says comes over the fake line at its time of the virtual clock.
//
// Threads: the world's; one of them runs at a time.
// Lifetime: ends before its world.
class VirtualVorrano {
public:
    // How long a reply takes to come back: longer than it takes to notice that the cable is out.
    static constexpr std::chrono::milliseconds kLatency{20};

    explicit VirtualVorrano(support::World& world)
        : m_world(world)
    {}
    VirtualVorrano(const VirtualVorrano&) = delete;
    VirtualVorrano& operator=(const VirtualVorrano&) = delete;

    // Main thread. A new line at the same path; the one before is gone for good.
    void plug();
    void unplug();
    [[nodiscard]] bool isPlugged() const { return m_line != nullptr && !m_line->isUnplugged(); }
    [[nodiscard]] support::FakeLine& line() { return *m_line; }

    [[nodiscard]] simulator::SimulatedVorrano& device() { return m_device; }

    // Called once, when the next bytes have come over the line and before the device acts on them; on any thread.
    void beforeNextBytes(std::function<void()> told) { m_beforeNextBytes = std::move(told); }

    // Nothing that the device has said is still on its way, and nothing is about to happen in it.
    [[nodiscard]] bool isQuiet() const { return m_onTheirWay == 0 && !m_device.nextEvent(); }

private:
    void received(const std::string& bytes);
    void act();
    void say(const simulator::Piece& piece);
    void atTime(support::Nanoseconds time, std::function<void()> task);

    support::World& m_world;
    simulator::SimulatedVorrano m_device;
    support::FakeLine* m_line = nullptr;
    std::function<void()> m_beforeNextBytes;
    int m_onTheirWay = 0;
    // What is to happen belongs to the plug-in during which it was planned.
    std::shared_ptr<int> m_pluggedIn;
};

} // namespace vorrano::campaign
