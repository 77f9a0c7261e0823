#include "platform/linux/UdevSource.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <string_view>

#include <libudev.h>
#include <unistd.h>

namespace vorrano::linux_platform {

namespace {

std::string textOf(const char* text) { return text == nullptr ? std::string() : std::string(text); }

template <typename Number>
Number numberOf(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    Number number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

struct ReleaseEnumeration {
    void operator()(udev_enumerate* object) const { udev_enumerate_unref(object); }
};

} // namespace

void UdevSource::Release::operator()(udev* object) const { udev_unref(object); }
void UdevSource::Release::operator()(udev_device* object) const { udev_device_unref(object); }
void UdevSource::Release::operator()(udev_monitor* object) const { udev_monitor_unref(object); }

bool UdevSource::start()
{
    m_udev.reset(udev_new());
    if (!m_udev) {
        return false;
    }
    m_daemonRuns = access("/run/udev/control", F_OK) == 0;
    m_monitor.reset(udev_monitor_new_from_netlink(m_udev.get(), "udev"));
    return m_monitor && udev_monitor_filter_add_match_subsystem_devtype(m_monitor.get(), "tty", nullptr) >= 0 &&
           udev_monitor_enable_receiving(m_monitor.get()) >= 0;
}

int UdevSource::descriptor() const { return udev_monitor_get_fd(m_monitor.get()); }

std::optional<TtyEvent> UdevSource::receive()
{
    errno = 0;
    const std::unique_ptr<udev_device, Release> device(udev_monitor_receive_device(m_monitor.get()));
    if (!device) {
        return errno == ENOBUFS ? std::optional<TtyEvent>(EventsLost{}) : std::nullopt;
    }
    const std::string action = textOf(udev_device_get_action(device.get()));
    const std::uint64_t number = udev_device_get_seqnum(device.get());
    if (action == "add") {
        return TtyAdded{number, factsOf(*device)};
    }
    if (action == "remove") {
        return TtyRemoved{number, textOf(udev_device_get_syspath(device.get()))};
    }
    return OtherEvent{};
}

std::optional<std::vector<TtyFacts>> UdevSource::enumerate()
{
    const std::unique_ptr<udev_enumerate, ReleaseEnumeration> enumeration(udev_enumerate_new(m_udev.get()));
    if (!enumeration || udev_enumerate_add_match_subsystem(enumeration.get(), "tty") < 0 ||
        udev_enumerate_scan_devices(enumeration.get()) < 0) {
        return std::nullopt;
    }
    std::vector<TtyFacts> all;
    for (auto* entry = udev_enumerate_get_list_entry(enumeration.get()); entry != nullptr;
         entry = udev_list_entry_get_next(entry)) {
        const char* path = udev_list_entry_get_name(entry);
        const std::unique_ptr<udev_device, Release> device(udev_device_new_from_syspath(m_udev.get(), path));
        if (device) {
            all.push_back(factsOf(*device));
        }
    }
    // Udev's own order differs from one time to the next.
    std::sort(all.begin(), all.end(), [](const auto& a, const auto& b) { return a.sysPath < b.sysPath; });
    return all;
}

std::uint64_t UdevSource::lastEventNumber() const
{
    std::ifstream file("/sys/kernel/uevent_seqnum");
    std::string line;
    std::getline(file, line);
    return numberOf<std::uint64_t>(line);
}

bool UdevSource::exists(const std::string& sysPath) const
{
    return std::unique_ptr<udev_device, Release>(udev_device_new_from_syspath(m_udev.get(), sysPath.c_str())) !=
           nullptr;
}

TtyFacts UdevSource::factsOf(udev_device& device) const
{
    TtyFacts facts;
    facts.sysPath = textOf(udev_device_get_syspath(&device));
    facts.name = textOf(udev_device_get_sysname(&device));
    // Parents belong to the device and go with it.
    auto* parent = udev_device_get_parent(&device);
    if (parent == nullptr) {
        // One of some seventy virtual terminals: there is no more to know, and reading it takes its time.
        return facts;
    }
    facts.hasParent = true;
    facts.parentSubsystem = textOf(udev_device_get_subsystem(parent));
    facts.parentDriver = textOf(udev_device_get_driver(parent));
    const auto property = [&](const char* key) { return textOf(udev_device_get_property_value(&device, key)); };
    facts.node = textOf(udev_device_get_devnode(&device));
    facts.initialized = !m_daemonRuns || udev_device_get_is_initialized(&device) > 0;
    facts.initializedAt = numberOf<std::uint64_t>(property("USEC_INITIALIZED"));
    facts.serialNumber = property("ID_SERIAL_SHORT");
    facts.path = property("ID_PATH");
    facts.bus = property("ID_BUS");
    facts.usbDriver = property("ID_USB_DRIVER");
    facts.usbInterface = property("ID_USB_INTERFACE_NUM");
    if (const char* type = udev_device_get_sysattr_value(&device, "type")) {
        facts.uartType = type;
    }
    if (auto* adapter = udev_device_get_parent_with_subsystem_devtype(&device, "usb", "usb_device")) {
        facts.usbInterfaceCount = numberOf<int>(textOf(udev_device_get_sysattr_value(adapter, "bNumInterfaces")));
    }
    return facts;
}

} // namespace vorrano::linux_platform
