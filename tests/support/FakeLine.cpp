#include "support/FakeLine.h"

#include "platform/ScopeExit.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <sys/ioctl.h>

#include <gtest/gtest.h>

namespace vorrano::support {

namespace {

constexpr int kInputLines = TIOCM_CTS | TIOCM_DSR | TIOCM_CAR | TIOCM_RI;

// A terminal as Linux makes it: 9600 8N1, line by line, echoing.
platform::TerminalAttributes freshAttributes()
{
    platform::TerminalAttributes fresh;
    fresh.record.c_iflag = ICRNL | IXON;
    fresh.record.c_oflag = OPOST | ONLCR;
    fresh.record.c_cflag = B9600 | CS8 | CREAD | HUPCL | CLOCAL;
    fresh.record.c_lflag = ISIG | ICANON | ECHO | ECHOE | ECHOK | ECHOCTL | ECHOKE | IEXTEN;
    fresh.record.c_cc[VMIN] = 1;
    ::cfsetispeed(&fresh.record, B9600);
    ::cfsetospeed(&fresh.record, B9600);
    return fresh;
}

} // namespace

void Failures::order(TerminalCall call, int error, int times)
{
    if (times > 0) {
        m_orders[call].push_back({error, times});
    }
}

int Failures::take(TerminalCall call)
{
    auto& orders = m_orders[call];
    if (orders.empty()) {
        return 0;
    }
    const auto error = orders.front().error;
    if (--orders.front().times == 0) {
        orders.pop_front();
    }
    return error;
}

FakeLine::FakeLine(VirtualTime& time, std::string path)
    : m_time(time)
    , m_path(std::move(path))
    , m_attributes(freshAttributes())
    , m_linesAtOpen(TIOCM_DTR | TIOCM_RTS)
{}

void FakeLine::reply(const std::string& bytes)
{
    if (isOpen() && !m_hungUp && !bytes.empty()) {
        m_input.push_back(bytes);
    }
}

void FakeLine::replyAfter(Nanoseconds delay, const std::string& bytes)
{
    m_time.at(m_time.now() + delay, [this, bytes] { reply(bytes); });
}

std::string FakeLine::written() const
{
    const auto append = [](std::string all, const RecordedWrite& write) { return std::move(all) + write.bytes; };
    return std::accumulate(m_writes.begin(), m_writes.end(), std::string(), append);
}

void FakeLine::unplug()
{
    m_hungUp = true;
    m_input.clear();
}

void FakeLine::setModemLines(int bits) { m_inputLines = bits & kInputLines; }

void FakeLine::writeAtMost(std::size_t bytes)
{
    EXPECT_GT(bytes, 0U) << "a line that never takes a byte keeps its writer busy for good";
    m_limit = std::max<std::size_t>(bytes, 1);
}

void FakeLine::limitNextWrites(const std::vector<std::size_t>& limits)
{
    m_nextLimits.insert(m_nextLimits.end(), limits.begin(), limits.end());
}

void FakeLine::stall(TerminalCall call) { m_stalls[call].on = true; }

void FakeLine::goOn(TerminalCall call) { m_stalls[call].on = false; }

void FakeLine::delayNext(TerminalCall call, Nanoseconds duration) { m_stalls[call].delays.push_back(duration); }

void FakeLine::recover()
{
    m_failures = {};
    m_nextLimits.clear();
    m_limit.reset();
    m_heldByAnother = false;
    for (auto& [call, stall] : m_stalls) {
        stall.on = false;
        stall.delays.clear();
    }
}

int FakeLine::stalled(TerminalCall call) const
{
    const auto known = m_stalls.find(call);
    return known == m_stalls.end() ? 0 : known->second.waiting;
}

std::size_t FakeLine::unread() const
{
    const auto add = [](std::size_t sum, const std::string& chunk) { return sum + chunk.size(); };
    return std::accumulate(m_input.begin(), m_input.end(), std::size_t{0}, add);
}

void FakeLine::waitIfStalled(TerminalCall call)
{
    auto& stall = m_stalls[call];
    ++stall.waiting;
    const platform::ScopeExit going([&stall] { --stall.waiting; });
    if (!stall.delays.empty()) {
        const auto end = m_time.now() + stall.delays.front();
        stall.delays.pop_front();
        m_time.waitUntil([] { return false; }, end);
    }
    if (stall.on) {
        m_time.waitUntil([&] { return !stall.on || m_hungUp; });
    }
}

std::size_t FakeLine::takeWriteLimit(std::size_t wanted)
{
    if (!m_nextLimits.empty()) {
        const auto limit = m_nextLimits.front();
        m_nextLimits.pop_front();
        return std::min(wanted, limit);
    }
    return std::min(wanted, m_limit.value_or(wanted));
}

} // namespace vorrano::support
