#include "cloud/LoginViewController.h"

#include "cloud/CloudAlerts.h"
#include "cloud/LoginTexts.h"
#include "platform/ActionOf.h"
#include "platform/MainQueue.h"
#include "platform/MainThreadDeleter.h"
#include "platform/Platform.h"
#include "platform/System.h"
#include "platform/WifiInterface.h"
#include "session/GlobalVariables.h"
#include "text/Text.h"
#include "web/Reachability.h"
#include "web/ServiceAddress.h"

#include <chrono>
#include <exception>
#include <utility>

namespace vorrano::cloud {

using platform::Control;
using platform::Platform;
using session::GlobalVariables;

namespace {

// Long enough for the person to see that the sign-in went well.
constexpr std::chrono::milliseconds kDelayOfSetupMenu{500};
constexpr int kAccepted = 1;

bool s_networksScanned = false;

} // namespace

std::shared_ptr<LoginViewController> LoginViewController::create(std::shared_ptr<platform::View> view,
                                                                 LoginWindows windows)
{
    const auto controller = platform::destroyedOnMainThread(
        new LoginViewController(std::move(view), std::move(windows)), Platform::current().mainQueue);
    controller->connectActions();
    return controller;
}

LoginViewController::LoginViewController(std::shared_ptr<platform::View> view, LoginWindows windows)
    : m_view(std::move(view))
    , m_windows(std::move(windows))
    , m_accountId(m_view->textField("accountId"))
    , m_password(m_view->textField("password"))
    , m_busyDisplay(*m_view)
{}

LoginViewController::~LoginViewController() { m_view.reset(); }

void LoginViewController::forgetNetworkScan() { s_networksScanned = false; }

void LoginViewController::connectActions()
{
    using Handler = void (LoginViewController::*)(Control&);
    const auto connect = [this](std::string_view button, Handler handler) {
        m_view->button(button).onPress(platform::actionOf(weak_from_this(), handler));
    };
    connect("loginButton", &LoginViewController::loginButton);
    connect("registerVorranoButton", &LoginViewController::registerVorranoButton);
}

void LoginViewController::awakeFromNib()
{
    platform::assertMainThread();
    m_success = false;
    if (!std::exchange(s_networksScanned, true)) {
        m_availableNetworks = Platform::current().wifi.scanForNetworks();
    }
}

void LoginViewController::loginButton(Control& sender)
{
    if (isNetworkConnectionNotReachable()) {
        Platform::current().alerts.runModal(networkNotReachableAlert());
        return;
    }
    m_progressBarSender = &sender;
    displayAndStartProgressIndicator(sender);
    if (m_accountId.text().empty()) {
        hideAndStopProgressIndicator(m_progressBarSender);
        platform::showError(Platform::current().alerts, login_text::kNoAccountID);
        return;
    }
    if (m_password.text().empty()) {
        hideAndStopProgressIndicator(m_progressBarSender);
        platform::showError(Platform::current().alerts, login_text::kNoPassword);
        return;
    }
    handleLogin();
}

void LoginViewController::handleLogin()
{
    m_loginUser = "1";
    m_accountId.setText(text::trimmingBlanks(m_accountId.text()));
    m_webCall.fetch(web::loginAddress(web::serviceRoot(), m_accountId.text(), m_password.text()),
                    [self = shared_from_this()](const web::Reply& json) { self->validateLoginWithJSON(json); });
}

void LoginViewController::validateLoginWithJSON(const web::Reply& json)
{
    platform::assertMainThread();
    try {
        const auto accountID = json.key("data").at(0).key("Id").text();
        if (accountID == "0") {
            Platform::current().alerts.runModal(platform::okAlert(login_text::kInvalidTitle, login_text::kTryAgain));
            hideAndStopProgressIndicator(m_progressBarSender);
            return;
        }
        // No answer at all signs in too, with an absent account id; that is intended.
        GlobalVariables::setUserIsLoggedIn("1");
        GlobalVariables::setGlobalAccountID(accountID);
        m_success = true;
        Platform::current().mainQueue.after(kDelayOfSetupMenu,
                                            [self = shared_from_this()] { self->navigateToSetupMenu(); });
    } catch (const std::exception&) {
        Platform::current().alerts.runModal(
            platform::okAlert(login_text::kCouldNotConnectTitle, login_text::kTryAgain));
        hideAndStopProgressIndicator(m_progressBarSender);
    }
}

void LoginViewController::registerVorranoButton(Control&)
{
    GlobalVariables::setUserIsLoggedIn("0");
    m_eulaWindowViewController = m_windows.makeAgreement();
    if (const auto keyWindow = Platform::current().layouts.keyWindow()) {
        keyWindow->beginSheet(m_eulaWindowViewController->window(), [weak = weak_from_this()](int returnCode) {
            if (const auto self = weak.lock()) {
                self->agreementDidEnd(returnCode);
            }
        });
    }
}

void LoginViewController::agreementDidEnd(int returnCode)
{
    // Without the agreement a sign-in has opened the setup window meanwhile; accepting opens no second one.
    if (returnCode == kAccepted && m_eulaWindowViewController) {
        navigateToSetupMenu();
    }
    m_eulaWindowViewController.reset();
}

void LoginViewController::navigateToSetupMenu()
{
    if (const auto keyWindow = Platform::current().layouts.keyWindow()) {
        // A sign-in may succeed while the agreement is open: then the key window is that sheet, and closing the window
        // under it closes both.
        auto* const parent = keyWindow->sheetParent();
        (parent != nullptr ? *parent : *keyWindow).close();
    }
    m_eulaWindowViewController.reset();
    m_setupMenu = m_windows.makeSetupMenu();
    m_setupMenu->window()->show();
}

void LoginViewController::displayAndStartProgressIndicator(Control&) { m_busyDisplay.start(); }

void LoginViewController::hideAndStopProgressIndicator(Control*) { m_busyDisplay.stop(); }

bool LoginViewController::isNetworkConnectionNotReachable() const { return web::isNetworkConnectionNotReachable(); }

} // namespace vorrano::cloud
