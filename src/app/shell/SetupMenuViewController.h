#pragma once

#include "cloud/LoginWindows.h"

#include <memory>

namespace vorrano::platform {
class TabView;
}

namespace vorrano::cloud {
class AccountInfoViewController;
class RegisterVorranoViewController;
} // namespace vorrano::cloud

namespace vorrano::device {
class UtilitiesViewController;
class WifiSetupViewController;
} // namespace vorrano::device

namespace vorrano::shell {

// The setup window: four tabs, told apart by their labels. Each choice of a tab, also of the one on screen, begins it
// anew with a fresh controller; the one before lives on until then, on screen or not.
//
// Controls: the tab view setupTabView.
// Threads: the main thread.
// Lifetime: dropping it closes the window and lets go of the tabs.
class SetupMenuViewController : public cloud::ScreenWindow,
                                public std::enable_shared_from_this<SetupMenuViewController> {
public:
    // Loads the window. awakeFromNib() is the caller's, once it has stored the controller.
    [[nodiscard]] static std::shared_ptr<SetupMenuViewController> create();

    // Only by way of create().
    SetupMenuViewController();
    ~SetupMenuViewController() override;

    // Begins the account tab; the others stay empty until they are chosen.
    void awakeFromNib();
    void tabViewDidSelectTabViewItem();

    [[nodiscard]] std::shared_ptr<platform::Window> window() const override { return m_window; }

    // The current controllers; null before the tab's first choice.
    [[nodiscard]] const auto& accountInfoViewController() const { return m_accountInfoViewController; }
    [[nodiscard]] const auto& registerVorranoViewController() const { return m_registerVorranoViewController; }
    [[nodiscard]] const auto& wifiSetupViewController() const { return m_wifiSetupViewController; }
    [[nodiscard]] const auto& utilitiesViewController() const { return m_utilitiesViewController; }

private:
    template <class Controller>
    void begin(std::shared_ptr<Controller>& controller, int index);

    std::shared_ptr<platform::Window> m_window;
    platform::TabView& m_setupTabView;
    std::shared_ptr<cloud::AccountInfoViewController> m_accountInfoViewController;
    std::shared_ptr<cloud::RegisterVorranoViewController> m_registerVorranoViewController;
    std::shared_ptr<device::WifiSetupViewController> m_wifiSetupViewController;
    std::shared_ptr<device::UtilitiesViewController> m_utilitiesViewController;
};

} // namespace vorrano::shell
