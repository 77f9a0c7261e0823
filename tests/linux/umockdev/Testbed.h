#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <string>

struct _UMockdevTestbed;

namespace vorrano::support {

// A USB adapter with a serial line, as the kernel and udev show it.
struct Adapter {
    std::string node = "ttyUSB0";
    // The number of the USB socket.
    std::string socket = "1";
    // Empty: the adapter has none.
    std::string serialNumber = "A1B2";
    std::string interface = "00";
    int interfaces = 1;
    // "ftdi_sio" and such on the usb-serial bus, or "cdc_acm".
    std::string driver = "ftdi_sio";
    // When udev first saw it, in microseconds; empty: udev does not tell.
    std::string initializedAt{};

    [[nodiscard]] std::string sysPath() const;
};

// Mocked devices: what udev lists and tells in this process is what the test plugs in.
class Testbed {
public:
    Testbed();
    Testbed(const Testbed&) = delete;
    Testbed& operator=(const Testbed&) = delete;
    ~Testbed();

    // The "add" event comes with it.
    void plug(const Adapter& adapter);
    void unplug(const Adapter& adapter);
    // As if its "remove" event had been lost: it comes back with that time.
    void replugUnseen(const Adapter& adapter, const std::string& initializedAt);
    void sendEvent(const Adapter& adapter, const std::string& action);

    // A UART on a board; the type is the text of its sysfs attribute, none when it has no such attribute.
    void addUart(const std::string& name, const char* type);

    // A tty without hardware.
    void addVirtualTerminal(const std::string& name);

    // The number of the last event, as the system gives it.
    void setLastEventNumber(std::uint64_t number);

private:
    struct Release {
        void operator()(_UMockdevTestbed* testbed) const;
    };
    [[nodiscard]] std::filesystem::path root() const;
    void addFromText(const std::string& text);

    std::unique_ptr<_UMockdevTestbed, Release> m_testbed;
    // Those with an adapter in them.
    std::set<std::string> m_sockets;
};

} // namespace vorrano::support
