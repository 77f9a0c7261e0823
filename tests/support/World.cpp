#include "support/World.h"

#include <utility>

namespace vorrano::support {

namespace {

// The device behind a node: its name, and that name's letters and number.
DeviceProperties behindNode(const std::string& calloutPath, const std::string& node)
{
    const auto name = node.substr(node.rfind('/') + 1);
    const auto letters = name.find_last_not_of("0123456789") + 1;
    DeviceProperties properties;
    properties.calloutPath = calloutPath;
    properties.dialinPath = node;
    properties.ttyName = name;
    properties.baseName = name.substr(0, letters);
    properties.suffix = name.substr(letters);
    return properties;
}

} // namespace

World::World(std::string serviceBaseUrl)
    : time(log)
    , mainQueue(time)
    , backgroundQueue(time)
    , layouts(mainQueue)
    , alerts(mainQueue)
    , openPanel(mainQueue)
    , terminal(time)
    , registry(mainQueue)
    , reachability(mainQueue)
    , urlFetch(time)
    , pause(mainQueue)
    , power(time, pause)
    , platform(platform::Interfaces{layouts, alerts, openPanel, mainQueue, backgroundQueue, notificationCentre,
                                    terminal, registry, wifi, reachability, urlFetch, power, stayAwake, portAccess,
                                    pause, log, os, std::move(serviceBaseUrl)})
{}

// The threads go first: what they hold may use any of the ports.
World::~World() { time.end(); }

FakeLine& World::plugVorrano(const std::string& serial) { return plugSerialDevice("/dev/cu.usbserial-" + serial); }

FakeLine& World::plugSerialDevice(const DeviceProperties& properties)
{
    auto& line = terminal.addLine(properties.calloutPath.value());
    registry.plug(properties);
    return line;
}

FakeLine& World::plugSerialDevice(const std::string& calloutPath)
{
    const auto isName = calloutPath.starts_with("/dev/cu.");
    const auto node = isName ? "/dev/ttyUSB" + std::to_string(registry.freeTtyNumber()) : calloutPath;
    return plugSerialDevice(behindNode(calloutPath, node));
}

void World::unplug(const std::string& calloutPath)
{
    terminal.line(calloutPath).unplug();
    registry.unplug(calloutPath);
}

} // namespace vorrano::support
