#pragma once

#include "platform/MainQueue.h"
#include "serial_pty/rig/RigTerminal.h"
#include "stress/Ledger.h"

#include <map>
#include <mutex>
#include <string>

namespace vorrano::stress {

// A terminal that reports to each port's ledger what is read and written, and when the port's last descriptor is gone.
// It announces each chunk that a thread reads: that is what the thread hands to the request queue next.
class WatchedTerminal : public pty_rig::RigTerminal {
public:
    WatchedTerminal(platform::Terminal& terminal, platform::MainQueue& mainQueue)
        : RigTerminal(terminal)
        , m_mainQueue(mainQueue)
    {}

    // Before any open of that path.
    void watch(const std::string& path, Ledger& ledger) { m_lines[path].ledger = &ledger; }

    platform::SystemResult open(const std::string& path) override;
    platform::SystemResult waitReadable(int descriptor, std::chrono::microseconds limit) override;
    platform::SystemResult read(int descriptor, std::span<std::byte> into) override;
    platform::SystemResult write(int descriptor, std::span<const std::byte> bytes) override;
    void release(int descriptor) override;

    // Every descriptor that was opened has been released.
    [[nodiscard]] bool hasNoDescriptor() const;

private:
    struct Line {
        Ledger* ledger = nullptr;
        int descriptors = 0;
    };

    [[nodiscard]] Ledger& ledgerOf(int descriptor);

    platform::MainQueue& m_mainQueue;
    mutable std::mutex m_mutex;
    std::map<std::string, Line> m_lines;
    std::map<int, Line*> m_lineOfDescriptor;
};

} // namespace vorrano::stress
