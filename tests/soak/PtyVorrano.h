#pragma once

#include "simulator/device/SimulatedVorrano.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace vorrano::pty_rig {
class Pty;
}

namespace vorrano::soak {

// A simulated Vorrano behind a pseudo-terminal, on a thread of its own. Its clock does not wait: once it has been told
// to stay in its bootloader its restart is over, and an image ends when it is taken.
//
// Threads: everything on the main thread, but what the thread of its own does. Lifetime: unplugged before it ends.
class PtyVorrano {
public:
    PtyVorrano();
    PtyVorrano(const PtyVorrano&) = delete;
    PtyVorrano& operator=(const PtyVorrano&) = delete;
    ~PtyVorrano();

    // Gives the node of the program's side.
    std::string plug();
    void unplug();

    // The image that is being uploaded: how much of it has come; the end of it.
    [[nodiscard]] std::size_t imageSize();
    [[nodiscard]] std::string takeImage();

private:
    void serve();
    void wakeUp() const;
    void work();
    void skipToNextEvent();

    std::mutex m_mutex; // of what follows; held while the device works, for microseconds
    simulator::SimulatedVorrano m_device;
    simulator::Moment m_clock{0};
    std::unique_ptr<pty_rig::Pty> m_pty;
    bool m_ending = false;

    int m_wake;
    std::thread m_thread;
};

} // namespace vorrano::soak
