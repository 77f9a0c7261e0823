#pragma once

#include "cloud/LoginWindows.h"
#include "platform/OperatingSystem.h"

#include <memory>

namespace vorrano::platform {
class Alerts;
class OperatingSystem;
} // namespace vorrano::platform

namespace vorrano::cloud {
class LoginViewController;
}

namespace vorrano::shell {

// Whether the version is too old. Major and minor number are compared each for itself, not as a pair: 10.8 and 9.5
// ask for an upgrade, 9.9 does not.
[[nodiscard]] bool needsUpgrade(const platform::OperatingSystemVersion& version);

// The program's begin: the main window with the login screen, and the check of the operating system's version.
//
// Threads: the main thread.
// Lifetime: for as long as the program runs; the login screen, and by it the setup window, live as long.
class VorranoAppDelegate {
public:
    // Shows the main window. The program's main calls applicationDidFinishLaunching() once its loop runs.
    VorranoAppDelegate();
    VorranoAppDelegate(const VorranoAppDelegate&) = delete;
    VorranoAppDelegate& operator=(const VorranoAppDelegate&) = delete;
    ~VorranoAppDelegate();

    void applicationDidFinishLaunching();
    void displayUpdateOSAlert();

    [[nodiscard]] const std::shared_ptr<platform::Window>& window() const { return m_window; }

private:
    platform::Alerts& m_alerts;
    platform::OperatingSystem& m_operatingSystem;
    std::shared_ptr<platform::Window> m_window;
    std::shared_ptr<cloud::LoginViewController> m_loginViewController;
};

} // namespace vorrano::shell
