#pragma once

#include "platform/Layouts.h"

#include <functional>
#include <memory>

namespace vorrano::cloud {

// A window with the controller behind it.
//
// Threads: the main thread. Lifetime: dropping it closes its window.
class ScreenWindow {
public:
    ScreenWindow() = default;
    ScreenWindow(const ScreenWindow&) = delete;
    ScreenWindow& operator=(const ScreenWindow&) = delete;
    virtual ~ScreenWindow() = default;

    [[nodiscard]] virtual std::shared_ptr<platform::Window> window() const = 0;
};

// The windows that the login screen opens, made by the shell: each call loads a new one, ready to be shown. Both
// must be there.
struct LoginWindows {
    std::function<std::shared_ptr<ScreenWindow>()> makeAgreement;
    std::function<std::shared_ptr<ScreenWindow>()> makeSetupMenu;
};

} // namespace vorrano::cloud
