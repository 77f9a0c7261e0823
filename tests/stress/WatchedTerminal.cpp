#include "stress/WatchedTerminal.h"

namespace vorrano::stress {

using platform::SystemResult;

// The ledger learns of the first and the last descriptor on the main thread: after the data callbacks of the readers
// before, and before those of the next one.
SystemResult WatchedTerminal::open(const std::string& path)
{
    const auto opened = RigTerminal::open(path);
    if (opened.failed() || opened.value <= 0) {
        return opened;
    }
    const std::lock_guard lock(m_mutex);
    auto& line = m_lines.at(path);
    m_lineOfDescriptor[opened.value] = &line;
    if (++line.descriptors == 1) {
        m_mainQueue.async([&ledger = *line.ledger] { ledger.setHasDescriptor(true); });
    }
    return opened;
}

void WatchedTerminal::release(int descriptor)
{
    {
        const std::lock_guard lock(m_mutex);
        auto& line = *m_lineOfDescriptor.extract(descriptor).mapped();
        if (--line.descriptors == 0) {
            m_mainQueue.async([&ledger = *line.ledger] { ledger.setHasDescriptor(false); });
        }
    }
    // From now on the system may give the number out again.
    RigTerminal::release(descriptor);
}

bool WatchedTerminal::hasNoDescriptor() const
{
    const std::lock_guard lock(m_mutex);
    return m_lineOfDescriptor.empty();
}

Ledger& WatchedTerminal::ledgerOf(int descriptor)
{
    const std::lock_guard lock(m_mutex);
    return *m_lineOfDescriptor.at(descriptor)->ledger;
}

SystemResult WatchedTerminal::waitReadable(int descriptor, std::chrono::microseconds limit)
{
    if (takeAnnounced()) {
        ledgerOf(descriptor).complain("a chunk that was read was not handed to the request queue");
    }
    return RigTerminal::waitReadable(descriptor, limit);
}

SystemResult WatchedTerminal::read(int descriptor, std::span<std::byte> into)
{
    const auto count = RigTerminal::read(descriptor, into);
    if (!count.failed() && count.value > 0) {
        ledgerOf(descriptor).reads();
        announce({StepKind::Chunk});
    }
    return count;
}

SystemResult WatchedTerminal::write(int descriptor, std::span<const std::byte> bytes)
{
    const auto written = RigTerminal::write(descriptor, bytes);
    ledgerOf(descriptor).writes(!written.failed() && static_cast<std::size_t>(written.value) == bytes.size());
    return written;
}

} // namespace vorrano::stress
