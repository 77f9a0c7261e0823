#include "platform/linux/NetworkManagerWifi.h"

#include "platform/linux/SystemBus.h"

#include <algorithm>

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QUtf8StringView>

namespace vorrano::linux_platform {

namespace {

constexpr std::chrono::milliseconds kLimit = std::chrono::seconds(1);
constexpr unsigned kWifiDeviceType = 2;
// Device states grow from "unmanaged" (10) and "unavailable" (20) to "activated".
constexpr unsigned kUnavailableState = 20;
constexpr unsigned kActivatedState = 100;

const QString kNetworkManager = QStringLiteral("org.freedesktop.NetworkManager");
const QString kManagerPath = QStringLiteral("/org/freedesktop/NetworkManager");
const QString kDevice = QStringLiteral("org.freedesktop.NetworkManager.Device");
const QString kWirelessDevice = QStringLiteral("org.freedesktop.NetworkManager.Device.Wireless");
const QString kAccessPoint = QStringLiteral("org.freedesktop.NetworkManager.AccessPoint");

QDBusMessage propertyCall(const QString& path, const QString& interface, const QString& property)
{
    return methodCall(kNetworkManager, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
                      {interface, property});
}

bool isRunning(const TimedCalls& calls)
{
    const QDBusReply<bool> hasOwner = calls.ask(
        methodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                   QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"), {kNetworkManager}));
    return hasOwner.isValid() && hasOwner.value();
}

std::optional<QStringList> pathsFrom(const QDBusMessage& answer)
{
    const QDBusReply<QList<QDBusObjectPath>> reply = answer;
    if (!reply.isValid()) {
        return std::nullopt;
    }
    QStringList paths;
    const auto objects = reply.value();
    std::transform(objects.begin(), objects.end(), std::back_inserter(paths), [](const auto& o) { return o.path(); });
    return paths;
}

// The property of each object, in the objects' order, invalid for one that has gone; none when time ran out.
std::optional<std::vector<QVariant>> propertiesOf(const QStringList& paths, const QString& interface,
                                                  const QString& property, const TimedCalls& calls)
{
    std::vector<QDBusPendingCall> pending;
    for (const auto& path : paths) {
        pending.push_back(calls.send(propertyCall(path, interface, property)));
    }
    std::vector<QVariant> values;
    for (const auto& call : pending) {
        const auto answer = TimedCalls::answerTo(call);
        if (TimedCalls::isMissing(answer)) {
            return std::nullopt;
        }
        const QDBusReply<QDBusVariant> reply = answer;
        values.push_back(reply.isValid() ? reply.value().variant() : QVariant());
    }
    return values;
}

std::optional<QStringList> wifiDevices(const TimedCalls& calls)
{
    const auto devices =
        pathsFrom(calls.ask(methodCall(kNetworkManager, kManagerPath, kNetworkManager, QStringLiteral("GetDevices"))));
    const auto types = devices ? propertiesOf(*devices, kDevice, QStringLiteral("DeviceType"), calls) : std::nullopt;
    if (!types) {
        return std::nullopt;
    }
    QStringList wifi;
    for (std::size_t i = 0; i < types->size(); ++i) {
        if (types->at(i).toUInt() == kWifiDeviceType) {
            wifi.push_back(devices->at(static_cast<qsizetype>(i)));
        }
    }
    return wifi;
}

// Of the devices that can be used the one that is in use, else the first; none when there is none, or time ran out.
std::optional<QString> defaultWifiDevice(const TimedCalls& calls)
{
    const auto devices = wifiDevices(calls);
    const auto states = devices ? propertiesOf(*devices, kDevice, QStringLiteral("State"), calls) : std::nullopt;
    if (!states) {
        return std::nullopt;
    }
    const auto isActivated = [](const QVariant& state) { return state.toUInt() == kActivatedState; };
    const auto isAvailable = [](const QVariant& state) { return state.toUInt() > kUnavailableState; };
    auto chosen = std::find_if(states->begin(), states->end(), isActivated);
    if (chosen == states->end()) {
        chosen = std::find_if(states->begin(), states->end(), isAvailable);
    }
    return chosen == states->end() ? std::nullopt : std::optional(devices->at(chosen - states->begin()));
}

// Refused or not, it is for the next reader.
void sendScanRequest(const QString& device)
{
    auto request = methodCall(kNetworkManager, device, kWirelessDevice, QStringLiteral("RequestScan"), {QVariantMap()});
    QDBusConnection::systemBus().send(request);
}

// A hidden network's SSID is empty, or as many zeros as it has characters.
bool isShown(const QByteArray& ssid)
{
    const bool isHidden = std::all_of(ssid.begin(), ssid.end(), [](char c) { return c == '\0'; });
    return !isHidden && QUtf8StringView(ssid.data(), ssid.size()).isValidUtf8();
}

std::vector<std::string> shownNames(const std::vector<QVariant>& ssids)
{
    std::vector<std::string> names;
    for (const auto& value : ssids) {
        const auto ssid = value.toByteArray();
        if (isShown(ssid) && std::find(names.begin(), names.end(), ssid.toStdString()) == names.end()) {
            names.push_back(ssid.toStdString());
        }
    }
    return names;
}

} // namespace

std::optional<std::vector<std::string>> NetworkManagerWifi::scanForNetworks()
{
    const TimedCalls calls(kLimit);
    if (!QDBusConnection::systemBus().isConnected() || !isRunning(calls)) {
        return std::nullopt;
    }
    const auto device = defaultWifiDevice(calls);
    if (!device) {
        return std::nullopt;
    }
    const auto points = pathsFrom(
        calls.ask(methodCall(kNetworkManager, *device, kWirelessDevice, QStringLiteral("GetAllAccessPoints"))));
    const auto values = points ? propertiesOf(*points, kAccessPoint, QStringLiteral("Ssid"), calls) : std::nullopt;
    if (!values) {
        return std::nullopt;
    }
    sendScanRequest(*device);
    return shownNames(*values);
}

} // namespace vorrano::linux_platform
