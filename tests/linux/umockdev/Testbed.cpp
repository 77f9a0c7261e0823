#include "linux/umockdev/Testbed.h"

#include <fstream>
#include <functional>

#include <gtest/gtest.h>
#include <umockdev.h>

namespace vorrano::support {

namespace {

constexpr const char* kHub = "/devices/platform/vhci_hcd.0/usb1";

std::string interfaceName(const Adapter& adapter)
{
    return "1-" + adapter.socket + ":1." + std::to_string(std::stoi(adapter.interface, nullptr, 16));
}

std::string usbPath(const Adapter& adapter) { return std::string(kHub) + "/1-" + adapter.socket; }
std::string interfacePath(const Adapter& adapter) { return usbPath(adapter) + "/" + interfaceName(adapter); }

bool isOnUsbSerialBus(const Adapter& adapter) { return adapter.driver != "cdc_acm"; }

std::string parentPath(const Adapter& adapter)
{
    return isOnUsbSerialBus(adapter) ? interfacePath(adapter) + "/" + adapter.node : interfacePath(adapter);
}

std::string ttyText(const Adapter& adapter)
{
    const auto idPath =
        "platform-vhci_hcd.0-usb-0:" + adapter.socket + interfaceName(adapter).substr(interfaceName(adapter).find(':'));
    std::string text = "P: " + parentPath(adapter) + "/tty/" + adapter.node + "\nE: DEVNAME=/dev/" + adapter.node +
                       "\nE: SUBSYSTEM=tty\nE: MAJOR=188\nE: MINOR=0" +
                       "\nE: ID_BUS=usb\nE: ID_USB_DRIVER=" + adapter.driver +
                       "\nE: ID_USB_INTERFACE_NUM=" + adapter.interface + "\nE: ID_PATH=" + idPath;
    if (!adapter.serialNumber.empty()) {
        text += "\nE: ID_SERIAL_SHORT=" + adapter.serialNumber;
    }
    if (!adapter.initializedAt.empty()) {
        text += "\nE: USEC_INITIALIZED=" + adapter.initializedAt;
    }
    return text + "\n\n";
}

} // namespace

std::string Adapter::sysPath() const { return "/sys" + parentPath(*this) + "/tty/" + node; }

void Testbed::Release::operator()(_UMockdevTestbed* testbed) const { g_object_unref(testbed); }

Testbed::Testbed()
    : m_testbed(umockdev_testbed_new())
{}

Testbed::~Testbed() = default;

void Testbed::plug(const Adapter& adapter)
{
    std::string text;
    if (m_sockets.insert(adapter.socket).second) {
        text += "P: " + usbPath(adapter) +
                "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\nA: bNumInterfaces= " + std::to_string(adapter.interfaces) +
                "\n\n";
    }
    text += "P: " + interfacePath(adapter) +
            "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_interface\nE: DRIVER=" + adapter.driver +
            "\nL: driver=../../../../../../bus/usb/drivers/" + adapter.driver + "\n\n";
    if (isOnUsbSerialBus(adapter)) {
        text += "P: " + parentPath(adapter) + "\nE: SUBSYSTEM=usb-serial\nE: DRIVER=" + adapter.driver +
                "\nL: driver=../../../../../../../bus/usb-serial/drivers/" + adapter.driver + "\n\n";
    }
    addFromText(text + ttyText(adapter));
}

void Testbed::unplug(const Adapter& adapter)
{
    sendEvent(adapter, "remove");
    const std::set<std::string, std::greater<>> childrenFirst{
        adapter.sysPath(), "/sys" + parentPath(adapter), "/sys" + interfacePath(adapter), "/sys" + usbPath(adapter)};
    for (const auto& path : childrenFirst) {
        umockdev_testbed_remove_device(m_testbed.get(), path.c_str());
    }
    m_sockets.erase(adapter.socket);
}

void Testbed::replugUnseen(const Adapter& adapter, const std::string& initializedAt)
{
    umockdev_testbed_set_property(m_testbed.get(), adapter.sysPath().c_str(), "USEC_INITIALIZED",
                                  initializedAt.c_str());
    sendEvent(adapter, "add");
}

void Testbed::sendEvent(const Adapter& adapter, const std::string& action)
{
    umockdev_testbed_uevent(m_testbed.get(), adapter.sysPath().c_str(), action.c_str());
}

void Testbed::addUart(const std::string& name, const char* type)
{
    const auto port = "/devices/pnp0/00:" + name;
    auto text = "P: " + port + "\nE: SUBSYSTEM=pnp\nE: DRIVER=serial\n\nP: " + port + "/tty/" + name +
                "\nE: DEVNAME=/dev/" + name + "\nE: SUBSYSTEM=tty\n";
    if (type != nullptr) {
        text += "A: type=" + std::string(type) + "\n";
    }
    addFromText(text + "\n");
}

void Testbed::addVirtualTerminal(const std::string& name)
{
    addFromText("P: /devices/virtual/tty/" + name + "\nE: DEVNAME=/dev/" + name + "\nE: SUBSYSTEM=tty\n\n");
}

void Testbed::setLastEventNumber(std::uint64_t number)
{
    const auto folder = root() / "sys/kernel";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "uevent_seqnum") << number << '\n';
}

std::filesystem::path Testbed::root() const
{
    const std::unique_ptr<char, decltype(&g_free)> path(umockdev_testbed_get_root_dir(m_testbed.get()), g_free);
    return path.get();
}

void Testbed::addFromText(const std::string& text)
{
    GError* error = nullptr;
    const bool isAdded = umockdev_testbed_add_from_string(m_testbed.get(), text.c_str(), &error) != 0;
    EXPECT_TRUE(isAdded) << (error == nullptr ? "" : error->message);
    g_clear_error(&error);
}

} // namespace vorrano::support
