#pragma once

#include "cloud/LoginViewController.h"
#include "unit/cloud/CloudTest.h"

#include <chrono>
#include <utility>

namespace vorrano::cloud {

using namespace std::chrono_literals;
using session::GlobalVariables;

inline constexpr auto kLoginLayout = "LoginViewController";
inline constexpr auto kAgreementLayout = "EULAWindowViewController";
inline constexpr auto kSetupLayout = "SetupMenuViewController";
inline constexpr auto kSpinner = "loginProgressIndicator";

// A window without a controller behind it.
class FakeScreenWindow : public ScreenWindow {
public:
    explicit FakeScreenWindow(std::shared_ptr<platform::Window> window)
        : m_window(std::move(window))
    {}
    [[nodiscard]] std::shared_ptr<platform::Window> window() const override { return m_window; }

private:
    std::shared_ptr<platform::Window> m_window;
};

inline const auto kInvalid = alertOf("Invalid AccountID/Password", "Please try again");
inline const auto kCouldNotConnect = alertOf("Could not connect", "Please try again");

// The login screen in its window, and the person at it.
struct LoginScreen : CloudTest {
    std::shared_ptr<platform::Window> mainWindow = world.layouts.loadWindow(kLoginLayout);
    support::FakeView& view = world.layouts.view(kLoginLayout);
    int setupWindowsMade = 0;
    std::shared_ptr<LoginViewController> controller;

    LoginScreen()
    {
        // The layout has it before the screen is busy for the first time.
        view.progressIndicator(kSpinner);
        controller = makeController();
        mainWindow->show();
    }

    std::shared_ptr<LoginViewController> makeController()
    {
        const auto screenOf = [this](const char* layout) {
            return std::make_shared<FakeScreenWindow>(world.layouts.loadWindow(layout));
        };
        auto made = LoginViewController::create(mainWindow->view(), {[screenOf] { return screenOf(kAgreementLayout); },
                                                                     [this, screenOf] {
                                                                         ++setupWindowsMade;
                                                                         return screenOf(kSetupLayout);
                                                                     }});
        made->awakeFromNib();
        return made;
    }

    void signIn(const std::string& accountID, const std::string& password)
    {
        view.type("accountId", accountID);
        view.type("password", password);
        EXPECT_TRUE(view.press("loginButton"));
        world.run();
    }

    // The agreement's accept button: ends the sheet, then closes the key window.
    void acceptAgreement()
    {
        auto& agreement = world.layouts.window(kAgreementLayout);
        agreement.sheetParent()->endSheet(agreement, 1);
        world.layouts.keyWindow()->close();
        world.run();
    }

    void cancelAgreement()
    {
        auto& agreement = world.layouts.window(kAgreementLayout);
        agreement.sheetParent()->endSheet(agreement, 0);
        world.run();
    }

    void expectBusy() const
    {
        EXPECT_EQ(view.alpha(), 0.3);
        EXPECT_FALSE(view.isHidden(kSpinner));
        EXPECT_TRUE(view.isAnimating(kSpinner));
    }

    void expectIdle() const
    {
        EXPECT_EQ(view.alpha(), 1.0);
        EXPECT_TRUE(view.isHidden(kSpinner));
        EXPECT_FALSE(view.isAnimating(kSpinner));
    }

    void expectStillOnLoginScreen()
    {
        world.advance(1s);
        EXPECT_TRUE(mainWindow->isVisible());
        EXPECT_FALSE(world.layouts.hasWindow(kSetupLayout));
        EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), std::nullopt);
        EXPECT_EQ(GlobalVariables::getGlobalAccountID(), std::nullopt);
        EXPECT_FALSE(controller->success());
    }

    void expectSignedIn(const std::optional<std::string>& accountID)
    {
        EXPECT_EQ(GlobalVariables::getUserIsLoggedIn(), "1");
        EXPECT_EQ(GlobalVariables::getGlobalAccountID(), accountID);
        EXPECT_TRUE(controller->success());
        EXPECT_TRUE(world.alerts.shown().empty());
        world.advance(500ms);
        EXPECT_FALSE(mainWindow->isVisible());
        EXPECT_TRUE(world.layouts.window(kSetupLayout).isVisible());
    }
};

} // namespace vorrano::cloud
