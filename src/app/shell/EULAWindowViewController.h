#pragma once

#include "cloud/LoginWindows.h"

#include <memory>

namespace vorrano::platform {
class Control;
class Layouts;
} // namespace vorrano::platform

namespace vorrano::shell {

// The licence agreement, shown as a sheet: accepting it ends the sheet with 1, cancelling with 0.
//
// Controls: the buttons buttonAccept and buttonCancel.
// Threads: the main thread.
class EULAWindowViewController : public cloud::ScreenWindow,
                                 public std::enable_shared_from_this<EULAWindowViewController> {
public:
    // Loads the window.
    [[nodiscard]] static std::shared_ptr<EULAWindowViewController> create();

    // Only by way of create().
    EULAWindowViewController();

    [[nodiscard]] std::shared_ptr<platform::Window> window() const override { return m_window; }

    void buttonAccept(platform::Control& sender);
    void buttonCancel(platform::Control& sender);

private:
    void connectActions();
    void endSheet(int returnCode);

    platform::Layouts& m_layouts;
    std::shared_ptr<platform::Window> m_window;
};

} // namespace vorrano::shell
