#pragma once

#include "platform/DeviceRegistry.h"
#include "platform/posix/PosixTerminal.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>

namespace vorrano::platform {

inline bool operator==(const SystemResult& left, const SystemResult& right)
{
    return left.value == right.value && left.error == right.error;
}

inline void PrintTo(const SystemResult& result, std::ostream* out)
{
    *out << result.value << " (errno " << result.error << ")";
}

} // namespace vorrano::platform

namespace vorrano::support {

// Knows which node is behind a callout path, and nothing else.
class Nodes final : public platform::DeviceRegistry {
public:
    std::map<std::string, std::string> byPath;

    [[nodiscard]] std::optional<platform::DeviceIterator> serialStreamDevices() override { return std::nullopt; }
    Watch watch(platform::DeviceEvent /*event*/, std::function<void(platform::DeviceIterator)> /*told*/) override
    {
        return {};
    }
    platform::DeviceHandle next(platform::DeviceIterator /*iterator*/) override { return 0; }
    [[nodiscard]] std::optional<std::string> stringProperty(platform::DeviceHandle /*device*/,
                                                            std::string_view /*key*/) const override
    {
        return std::nullopt;
    }
    void retain(std::uint32_t /*handle*/) override {}
    void release(std::uint32_t /*handle*/) override {}
    [[nodiscard]] std::optional<std::string> nodeOfCalloutPath(const std::string& path) const override;
};

// A pty whose slave stands for the device.
class Pty {
public:
    Pty();
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;
    ~Pty() { hangUp(); }

    [[nodiscard]] const std::string& node() const { return m_node; }
    [[nodiscard]] int master() const { return m_master; }
    void hangUp();

    // What the device sends.
    void send(std::string_view bytes) const;
    // That many bytes of what the device received; fewer when they do not come within the deadline.
    [[nodiscard]] std::string received(std::size_t count) const;

private:
    int m_master = -1;
    std::string m_node;
};

// A terminal over one real pty.
class PtyTest : public testing::Test {
protected:
    static constexpr const char* kPath = "/dev/cu.usbserial-A1B2";

    PtyTest() { nodes.byPath[kPath] = pty.node(); }

    // The line, opened; a failure ends the test by an exception.
    int opened();

    // What `act` answers in a process of its own (0 to 255).
    static int inAnotherProcess(const std::function<int()>& act);

    Pty pty;
    Nodes nodes;
    posix_platform::PosixTerminal terminal{nodes};
};

[[nodiscard]] inline std::span<const std::byte> bytesOf(std::string_view text)
{
    return std::as_bytes(std::span(text.data(), text.size()));
}

} // namespace vorrano::support
