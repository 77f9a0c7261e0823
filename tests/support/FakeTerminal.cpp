#include "support/FakeTerminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/ioctl.h>

#include <gtest/gtest.h>

namespace vorrano::support {

using platform::ApplyAttributes;
using platform::SystemResult;
using platform::TerminalAttributes;

namespace {

constexpr int kOutputLines = TIOCM_RTS | TIOCM_DTR;

// Standard rates as (baud, code).
constexpr std::array kStandardSpeeds = std::to_array<std::pair<std::uint64_t, speed_t>>({
    {0, B0},           {50, B50},         {75, B75},         {110, B110},       {134, B134},       {150, B150},
    {200, B200},       {300, B300},       {600, B600},       {1200, B1200},     {1800, B1800},     {2400, B2400},
    {4800, B4800},     {9600, B9600},     {19200, B19200},   {38400, B38400},   {57600, B57600},   {115200, B115200},
    {230400, B230400}, {460800, B460800}, {500000, B500000}, {576000, B576000}, {921600, B921600}, {1000000, B1000000},
});

SystemResult failure(int error) { return {-1, error}; }

} // namespace

FakeTerminal::FakeTerminal(VirtualTime& time)
    : m_time(time)
{}

FakeTerminal::~FakeTerminal() = default;

SystemResult FakeTerminal::open(const std::string& path)
{
    m_time.crossing();
    auto* const line = present(path);
    if (line != nullptr) {
        line->waitIfStalled(TerminalCall::Open);
    }
    auto result = failure(line == nullptr ? ENOENT : 0);
    if (const auto error = failureOf(TerminalCall::Open, line)) {
        result.error = error;
    }
    if (!result.failed()) {
        result = openLine(*line);
    }
    record(TerminalCall::Open, result.failed() ? 0 : result.value, path, "open");
    return result;
}

SystemResult FakeTerminal::openLine(FakeLine& line)
{
    if (line.m_hungUp) {
        return failure(ENOENT);
    }
    if (line.m_heldByAnother || line.isOpen()) {
        return failure(EBUSY);
    }
    int number = std::exchange(m_nextDescriptor, kFirstDescriptor);
    while (m_descriptors.contains(number)) {
        ++number;
    }
    m_descriptors[number] = {&line};
    line.m_descriptor = number;
    line.m_outputLines |= line.m_linesAtOpen;
    return {number};
}

// Records the call, lets it take its time and answers what a test ordered for it. After it the descriptor may have
// been closed by another thread: the call goes on with the line that it began with.
FakeTerminal::Begun FakeTerminal::begin(TerminalCall call, int descriptor, const std::string& text)
{
    m_time.crossing();
    const auto known = m_descriptors.find(descriptor);
    if (known == m_descriptors.end()) {
        record(call, descriptor, {}, text);
        return {nullptr, false, failure(EBADF)};
    }
    const auto [line, closed, blocks] = known->second;
    record(call, descriptor, line->path(), text);
    if (closed) {
        return {nullptr, blocks, {}};
    }
    line->waitIfStalled(call);
    unwindIfEnded();
    if (const auto error = failureOf(call, line)) {
        return {nullptr, blocks, failure(error)};
    }
    return {line, blocks, {}};
}

SystemResult FakeTerminal::setStatusFlags(int descriptor, int flags)
{
    const auto [line, blocks, result] =
        begin(TerminalCall::SetStatusFlags, descriptor, "setStatusFlags " + std::to_string(flags));
    if (const auto known = m_descriptors.find(descriptor); line != nullptr && known != m_descriptors.end()) {
        known->second.blocks = (flags & O_NONBLOCK) == 0;
    }
    return result;
}

SystemResult FakeTerminal::attributes(int descriptor, TerminalAttributes& into)
{
    const auto [line, blocks, result] = begin(TerminalCall::Attributes, descriptor, "attributes");
    if (line == nullptr) {
        return result.failed() ? result : failure(ENOTTY);
    }
    if (line->m_hungUp) {
        return failure(EIO);
    }
    into = line->m_attributes;
    return result;
}

SystemResult FakeTerminal::setAttributes(int descriptor, ApplyAttributes when, const TerminalAttributes& attributes)
{
    const auto* const text = when == ApplyAttributes::Now ? "setAttributes now" : "setAttributes afterDrain";
    const auto [line, blocks, result] = begin(TerminalCall::SetAttributes, descriptor, text);
    if (line == nullptr) {
        return result.failed() ? result : failure(ENOTTY);
    }
    if (line->m_hungUp) {
        return failure(EIO);
    }
    line->m_attributes = attributes;
    line->m_settings.push_back({attributes, when, m_time.now()});
    return result;
}

SystemResult FakeTerminal::setSpeed(TerminalAttributes& attributes, std::uint64_t baud)
{
    m_time.crossing();
    record(TerminalCall::SetSpeed, 0, {}, "setSpeed " + std::to_string(baud));
    if (const auto error = m_failures.take(TerminalCall::SetSpeed)) {
        return failure(error);
    }
    const auto isRate = [baud](const auto& speed) { return speed.first == baud; };
    const auto standard = std::find_if(kStandardSpeeds.begin(), kStandardSpeeds.end(), isRate);
    if (standard == kStandardSpeeds.end() && baud > UINT32_MAX) {
        return failure(EINVAL);
    }
    attributes.record.c_cflag &= ~static_cast<tcflag_t>(CIBAUD);
    attributes.customInputSpeed.reset();
    if (standard != kStandardSpeeds.end()) {
        attributes.customSpeed.reset();
        ::cfsetspeed(&attributes.record, standard->second);
        return {};
    }
    attributes.customSpeed = baud;
    return {};
}

SystemResult FakeTerminal::modemLines(int descriptor)
{
    const auto [line, blocks, result] = begin(TerminalCall::ModemLines, descriptor, "modemLines");
    if (line == nullptr) {
        return result.failed() ? result : failure(ENOTTY);
    }
    return line->m_hungUp ? failure(ENXIO) : SystemResult{line->m_inputLines | line->m_outputLines};
}

SystemResult FakeTerminal::setModemLines(int descriptor, int lines)
{
    const auto [line, blocks, result] =
        begin(TerminalCall::SetModemLines, descriptor, "setModemLines " + std::to_string(lines));
    if (line == nullptr) {
        return result.failed() ? result : failure(ENOTTY);
    }
    if (line->m_hungUp) {
        return failure(EIO);
    }
    line->m_outputLines = lines & kOutputLines;
    line->m_modemLineWrites.push_back(lines);
    return result;
}

// It gives way in every case, so that a reader whose line is always readable, or always fails, lets others run too.
SystemResult FakeTerminal::waitReadable(int descriptor, std::chrono::microseconds limit)
{
    const auto text = "waitReadable " + std::to_string(limit.count()) + "us";
    const auto [line, blocks, result] = begin(TerminalCall::WaitReadable, descriptor, text);
    m_time.giveWay();
    unwindIfEnded();
    if (line == nullptr) {
        return result.failed() ? result : SystemResult{1};
    }
    const auto isReadable = [&line = *line] { return line.m_hungUp || !line.m_input.empty(); };
    const auto waited = m_time.waitUntil(isReadable, m_time.now() + limit);
    unwindIfEnded();
    return {waited == VirtualTime::Wait::Met ? 1 : 0};
}

void FakeTerminal::wait(std::chrono::microseconds duration, std::chrono::microseconds leeway)
{
    m_time.crossing();
    record(TerminalCall::Wait, 0, {}, "wait " + std::to_string(duration.count()) + "us");
    const auto never = [] { return false; };
    const auto late = std::chrono::duration_cast<Nanoseconds>(leeway * m_time.lateness());
    m_time.waitUntil(never, m_time.now() + duration + late);
    unwindIfEnded();
}

SystemResult FakeTerminal::read(int descriptor, std::span<std::byte> into)
{
    const auto [line, blocks, result] = begin(TerminalCall::Read, descriptor, "read");
    if (line == nullptr) {
        return result;
    }
    const auto isReadable = [&line = *line] { return line.m_hungUp || !line.m_input.empty(); };
    if (blocks) {
        m_time.waitUntil(isReadable);
        unwindIfEnded();
    }
    if (line->m_hungUp) {
        return {0};
    }
    if (line->m_input.empty()) {
        return failure(EAGAIN);
    }
    auto& chunk = line->m_input.front();
    const auto count = std::min(chunk.size(), into.size());
    std::memcpy(into.data(), chunk.data(), count);
    chunk.erase(0, count);
    if (chunk.empty()) {
        line->m_input.pop_front();
    }
    return {static_cast<int>(count)};
}

SystemResult FakeTerminal::write(int descriptor, std::span<const std::byte> bytes)
{
    const auto wanted = bytes.size();
    const auto [line, blocks, result] = begin(TerminalCall::Write, descriptor, "write " + std::to_string(wanted));
    if (line == nullptr) {
        return result.failed() ? result : SystemResult{static_cast<int>(wanted)};
    }
    if (line->m_hungUp) {
        return failure(EIO);
    }
    const auto count = line->takeWriteLimit(wanted);
    if (count > 0) {
        const std::string taken(reinterpret_cast<const char*>(bytes.data()), count);
        line->m_writes.push_back({taken, m_time.now()});
        if (const auto told = line->m_onWrite) {
            told(taken);
        }
    }
    return {static_cast<int>(count)};
}

SystemResult FakeTerminal::close(int descriptor)
{
    const auto [line, blocks, result] = begin(TerminalCall::Close, descriptor, "close");
    const auto known = m_descriptors.find(descriptor);
    if (line == nullptr || known == m_descriptors.end() || known->second.closed) {
        return result.failed() ? result : failure(EBADF);
    }
    known->second.closed = true;
    line->m_descriptor = 0;
    line->m_input.clear();
    if ((line->m_attributes.record.c_cflag & HUPCL) != 0) {
        line->m_outputLines = 0;
    }
    return result;
}

void FakeTerminal::release(int descriptor)
{
    const auto known = m_descriptors.find(descriptor);
    const auto isClosed = known != m_descriptors.end() && known->second.closed;
    EXPECT_TRUE(isClosed) << "descriptor " << descriptor << " is released, but not closed before";
    record(TerminalCall::Release, descriptor, isClosed ? known->second.line->path() : "", "release");
    if (isClosed) {
        m_descriptors.erase(known);
    }
}

FakeLine& FakeTerminal::addLine(const std::string& path)
{
    m_lines.push_back(std::make_unique<FakeLine>(m_time, path));
    return *m_lines.back();
}

FakeLine& FakeTerminal::line(const std::string& path)
{
    if (auto* const found = present(path)) {
        return *found;
    }
    ADD_FAILURE() << "there is no line at " << path;
    throw std::logic_error("there is no line at " + path);
}

FakeLine* FakeTerminal::present(const std::string& path) const
{
    const auto fits = [&](const auto& line) { return line->path() == path; };
    const auto found = std::find_if(m_lines.rbegin(), m_lines.rend(), fits);
    return found == m_lines.rend() ? nullptr : found->get();
}

std::vector<RecordedCall> FakeTerminal::calls(std::initializer_list<TerminalCall> kinds) const
{
    std::vector<RecordedCall> chosen;
    std::copy_if(m_calls.begin(), m_calls.end(), std::back_inserter(chosen), [&](const RecordedCall& call) {
        return std::find(kinds.begin(), kinds.end(), call.call) != kinds.end();
    });
    return chosen;
}

std::vector<std::string> FakeTerminal::callTexts(std::initializer_list<TerminalCall> kinds) const
{
    return textsOf(calls(kinds));
}

std::vector<std::string> FakeTerminal::callTexts() const { return textsOf(m_calls); }

std::vector<std::string> FakeTerminal::textsOf(const std::vector<RecordedCall>& calls)
{
    std::vector<std::string> texts;
    std::transform(calls.begin(), calls.end(), std::back_inserter(texts),
                   [](const RecordedCall& call) { return call.text; });
    return texts;
}

std::size_t FakeTerminal::openDescriptors() const
{
    const auto isOpen = [](const auto& entry) { return !entry.second.closed; };
    return static_cast<std::size_t>(std::count_if(m_descriptors.begin(), m_descriptors.end(), isOpen));
}

int FakeTerminal::failureOf(TerminalCall call, FakeLine* line)
{
    if (const auto error = m_failures.take(call)) {
        return error;
    }
    return line == nullptr ? 0 : line->m_failures.take(call);
}

void FakeTerminal::record(TerminalCall call, int descriptor, const std::string& path, const std::string& text)
{
    m_calls.push_back({call, descriptor, path, text, m_time.now(), m_time.isMainThread()});
}

// The program may ask again and again for as long as its port is open, so an error would not end its task.
void FakeTerminal::unwindIfEnded() const
{
    if (m_time.hasEnded() && !m_time.isMainThread() && std::uncaught_exceptions() == 0) {
        throw Unwound();
    }
}

} // namespace vorrano::support
