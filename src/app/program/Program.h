#pragma once

#include <functional>
#include <memory>
#include <string>

namespace vorrano::platform {
class BackgroundQueue;
class DeviceRegistry;
class MainQueue;
class NetworkReachability;
class WifiInterface;
} // namespace vorrano::platform

// What the programs share: the logic composed with its adapters, from the first line to the last thread's end.
namespace vorrano::program {

// In what the programs differ.
struct Composition {
    // Where the vendor's web service is, without a slash at the end.
    std::string serviceBaseUrl;
    std::function<std::unique_ptr<platform::DeviceRegistry>(platform::MainQueue&)> makeDeviceRegistry;
    std::function<std::unique_ptr<platform::WifiInterface>()> makeWifi;
    std::function<std::unique_ptr<platform::NetworkReachability>(platform::MainQueue&, platform::BackgroundQueue&)>
        makeReachability;
};

// This computer's devices, networks and routes.
[[nodiscard]] Composition thisComputer(std::string serviceBaseUrl);

// Opens the program and returns its exit status once it has ended: by the last window's close or by SIGTERM, SIGINT or
// SIGHUP. Call it from main(), once.
int run(int argc, char** argv, const Composition& composition);

} // namespace vorrano::program
