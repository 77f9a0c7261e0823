#pragma once

#include "cloud/LoginWindows.h"
#include "platform/BusyDisplay.h"
#include "platform/Layouts.h"
#include "web/Reply.h"
#include "web/WebCall.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorrano::cloud {

// The login screen: signs in to an account, or leads through the licence agreement to a new one; both end in the setup
// window.
//
// Controls: accountId, password (text fields), loginProgressIndicator, loginButton, registerVorranoButton.
// Threads: the main thread; the last reference may fall on any.
// Lifetime: held by whoever made the main window, beyond that window's closing; a call under way holds it too.
class LoginViewController : public std::enable_shared_from_this<LoginViewController> {
public:
    // `view` is the main window's. awakeFromNib() is the caller's, once it has stored the controller.
    [[nodiscard]] static std::shared_ptr<LoginViewController> create(std::shared_ptr<platform::View> view,
                                                                     LoginWindows windows);
    LoginViewController(const LoginViewController&) = delete;
    LoginViewController& operator=(const LoginViewController&) = delete;
    ~LoginViewController();

    void awakeFromNib();

    void loginButton(platform::Control& sender);
    void registerVorranoButton(platform::Control& sender);
    void handleLogin();
    void validateLoginWithJSON(const web::Reply& json);
    void navigateToSetupMenu();
    void displayAndStartProgressIndicator(platform::Control& sender);
    // The sender may be null.
    void hideAndStopProgressIndicator(platform::Control* sender);
    [[nodiscard]] bool isNetworkConnectionNotReachable() const;

    // Whether a login succeeded.
    [[nodiscard]] bool success() const { return m_success; }
    [[nodiscard]] const std::optional<std::string>& loginUser() const { return m_loginUser; }
    // The Wi-Fi networks seen at load by the first controller of the run; none for any other.
    [[nodiscard]] const std::optional<std::vector<std::string>>& availableNetworks() const
    {
        return m_availableNetworks;
    }
    [[nodiscard]] const std::shared_ptr<ScreenWindow>& setupMenu() const { return m_setupMenu; }
    [[nodiscard]] const std::shared_ptr<ScreenWindow>& eulaWindowViewController() const
    {
        return m_eulaWindowViewController;
    }

    // The next controller scans for Wi-Fi networks again: the program's end.
    static void forgetNetworkScan();

private:
    LoginViewController(std::shared_ptr<platform::View> view, LoginWindows windows);

    void connectActions();
    void agreementDidEnd(int returnCode);

    web::WebCall m_webCall;
    std::shared_ptr<platform::View> m_view;
    LoginWindows m_windows;
    platform::TextField& m_accountId;
    platform::TextField& m_password;
    platform::BusyDisplay m_busyDisplay;
    platform::Control* m_progressBarSender = nullptr;
    bool m_success = false;
    std::optional<std::string> m_loginUser;
    std::optional<std::vector<std::string>> m_availableNetworks;
    std::shared_ptr<ScreenWindow> m_setupMenu;
    std::shared_ptr<ScreenWindow> m_eulaWindowViewController;
};

} // namespace vorrano::cloud
