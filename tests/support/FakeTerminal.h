#pragma once

#include "platform/Terminal.h"
#include "support/FakeLine.h"
#include "support/VirtualTime.h"

#include <cstddef>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vorrano::support {

struct RecordedCall {
    TerminalCall call;
    // The descriptor (the one opened, for an open that succeeded), and the path of its line.
    int descriptor = 0;
    std::string path;
    // The call as text: "open", "setStatusFlags 0", "setAttributes now", "setAttributes afterDrain", "setSpeed 9600",
    // "setModemLines 6", "waitReadable 100000us", "read", "write 8" (bytes asked for), "close", "release", ...
    std::string text;
    Nanoseconds at{};
    bool onMainThread = false;
};

// Terminals of fake lines, and a record of every call.
//
// Descriptors are given out lowest first from 3 on, and again only after release(). A closed one that was not released
// behaves like /dev/null; any other number gives EBADF.
class FakeTerminal : public platform::Terminal {
public:
    explicit FakeTerminal(VirtualTime& time);
    ~FakeTerminal() override;

    platform::SystemResult open(const std::string& path) override;
    platform::SystemResult setStatusFlags(int descriptor, int flags) override;
    platform::SystemResult attributes(int descriptor, platform::TerminalAttributes& into) override;
    platform::SystemResult setAttributes(int descriptor, platform::ApplyAttributes when,
                                         const platform::TerminalAttributes& attributes) override;
    platform::SystemResult setSpeed(platform::TerminalAttributes& attributes, std::uint64_t baud) override;
    platform::SystemResult modemLines(int descriptor) override;
    platform::SystemResult setModemLines(int descriptor, int lines) override;
    platform::SystemResult waitReadable(int descriptor, std::chrono::microseconds limit) override;
    void wait(std::chrono::microseconds duration, std::chrono::microseconds leeway) override;
    platform::SystemResult read(int descriptor, std::span<std::byte> into) override;
    platform::SystemResult write(int descriptor, std::span<const std::byte> bytes) override;
    platform::SystemResult close(int descriptor) override;
    void release(int descriptor) override;

    // A line at that path, in place of one that was unplugged there. Lines live as long as the terminal.
    FakeLine& addLine(const std::string& path);

    // The line at that path that was added last; none fails the test and throws std::logic_error.
    [[nodiscard]] FakeLine& line(const std::string& path);

    // Like FakeLine::failNext(), on any line, and before that one's failures. The only one for SetSpeed, which has no
    // line, and for Open of a path without a line.
    void failNext(TerminalCall call, int error, int times = 1) { m_failures.order(call, error, times); }

    // The next open gives this number, where it is free.
    void giveNextDescriptor(int number) { m_nextDescriptor = number; }

    // Every call since the beginning or forgetCalls(), in order; of these kinds only.
    [[nodiscard]] const std::vector<RecordedCall>& calls() const { return m_calls; }
    [[nodiscard]] std::vector<RecordedCall> calls(std::initializer_list<TerminalCall> kinds) const;

    // The texts of the calls, for one comparison; of these kinds only.
    [[nodiscard]] std::vector<std::string> callTexts() const;
    [[nodiscard]] std::vector<std::string> callTexts(std::initializer_list<TerminalCall> kinds) const;
    void forgetCalls() { m_calls = {}; }

    // Numbers that are open, and numbers that are not free (open, or closed and not released).
    [[nodiscard]] std::size_t openDescriptors() const;
    [[nodiscard]] std::size_t descriptorsInUse() const { return m_descriptors.size(); }

private:
    struct Descriptor {
        FakeLine* line = nullptr;
        bool closed = false;
        bool blocks = false;
    };

    // How a call on a descriptor begins: with its line, or, on one that was closed, without; or it fails.
    struct Begun {
        FakeLine* line = nullptr;
        bool blocks = false;
        platform::SystemResult result;
    };

    Begun begin(TerminalCall call, int descriptor, const std::string& text);
    platform::SystemResult openLine(FakeLine& line);
    [[nodiscard]] FakeLine* present(const std::string& path) const;
    int failureOf(TerminalCall call, FakeLine* line);
    void record(TerminalCall call, int descriptor, const std::string& path, const std::string& text);
    static std::vector<std::string> textsOf(const std::vector<RecordedCall>& calls);
    void unwindIfEnded() const;

    static constexpr int kFirstDescriptor = 3;

    VirtualTime& m_time;
    std::vector<std::unique_ptr<FakeLine>> m_lines;
    std::map<int, Descriptor> m_descriptors;
    std::vector<RecordedCall> m_calls;
    Failures m_failures;
    int m_nextDescriptor = kFirstDescriptor;
};

} // namespace vorrano::support
