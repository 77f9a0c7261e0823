#include "cloud/AccountInfoViewController.h"

#include "cloud/AccountTexts.h"
#include "cloud/CloudAlerts.h"
#include "platform/MainThreadDeleter.h"
#include "platform/Platform.h"
#include "platform/SystemLog.h"
#include "session/GlobalVariables.h"
#include "session/TextScreening.h"
#include "web/Reachability.h"
#include "web/ServiceAddress.h"

#include <exception>

namespace vorrano::cloud {

using platform::Control;
using platform::Platform;
using session::GlobalVariables;

std::shared_ptr<AccountInfoViewController> AccountInfoViewController::create()
{
    const std::shared_ptr<AccountInfoViewController> controller(
        new AccountInfoViewController(),
        platform::MainThreadDeleter<AccountInfoViewController>(Platform::current().mainQueue));
    controller->connectActions();
    return controller;
}

AccountInfoViewController::AccountInfoViewController()
    : m_alerts(Platform::current().alerts)
    , m_systemLog(Platform::current().systemLog)
    , m_view(Platform::current().layouts.loadView("AccountInfoViewController"))
    , m_accountID(m_view->textField("accountID"))
    , m_password(m_view->textField("password"))
    , m_confirmPassword(m_view->textField("confirmPassword"))
    , m_guestPassword(m_view->textField("guestPassword"))
    , m_confirmGuestPassword(m_view->textField("confirmGuestPassword"))
    , m_email(m_view->textField("email"))
    , m_name(m_view->textField("name"))
    , m_address(m_view->textField("address"))
    , m_address2(m_view->textField("address2"))
    , m_cityName(m_view->textField("cityName"))
    , m_stateName(m_view->textField("stateName"))
    , m_countryName(m_view->textField("countryName"))
    , m_zipCode(m_view->textField("zipCode"))
    , m_accountInfoHelpLabel(m_view->label("accountInfoHelpLabel"))
{}

AccountInfoViewController::~AccountInfoViewController() = default;

void AccountInfoViewController::connectActions()
{
    using Handler = void (AccountInfoViewController::*)(Control&);
    const auto connect = [this](std::string_view button, Handler handler) {
        m_view->button(button).onPress([weak = weak_from_this(), handler](Control& sender) {
            if (const auto self = weak.lock()) {
                ((*self).*handler)(sender);
            }
        });
    };
    connect("saveButton", &AccountInfoViewController::saveButton);
    connect("helpButton1", &AccountInfoViewController::helpButton1);
    connect("helpButton2", &AccountInfoViewController::helpButton2);
    connect("helpButton3", &AccountInfoViewController::helpButton3);
}

void AccountInfoViewController::awakeFromNib()
{
    if (GlobalVariables::getUserIsLoggedIn() == "1") {
        requestAccountInfo();
        m_accountInfoHelpLabel.setHidden(true);
    } else {
        m_accountInfoHelpLabel.setHidden(false);
    }
    for (auto* field :
         {&m_accountID, &m_password, &m_confirmPassword, &m_guestPassword, &m_confirmGuestPassword, &m_email, &m_name,
          &m_address, &m_address2, &m_cityName, &m_stateName, &m_countryName, &m_zipCode}) {
        field->onChange([weak = weak_from_this(), field](Control&) {
            if (const auto self = weak.lock()) {
                self->controlTextDidChange(*field);
            }
        });
    }
}

void AccountInfoViewController::requestAccountInfo()
{
    m_accountID.setEnabled(false);
    m_webCall.fetch(web::accountAddress(web::serviceRoot(), GlobalVariables::getGlobalAccountID()),
                    [self = shared_from_this()](const web::Reply& reply) { self->updateViewWithAccountInfo(reply); });
}

void AccountInfoViewController::updateViewWithAccountInfo(const web::Reply& reply)
{
    // No guard: a value that is no text ends the filling where it stands.
    const auto record = reply.key("data").at(0);
    const auto value = [&record](std::string_view key) { return record.key(key).text().value_or(""); };
    m_accountID.setText(value("AccountLogin"));
    m_password.setText(value("Password"));
    m_confirmPassword.setText(value("Password"));
    m_email.setText(value("Email"));
    m_name.setText(value("Name"));
    m_address.setText(value("Address1"));
    m_address2.setText(value("Address2"));
    m_cityName.setText(value("City"));
    m_stateName.setText(value("State"));
    m_countryName.setText(value("Country"));
    m_zipCode.setText(value("ZipCode"));
    m_guestPassword.setText(value("GuestPassword"));
    m_confirmGuestPassword.setText(value("GuestPassword"));
}

AccountForm AccountInfoViewController::form() const
{
    const web::Account account{
        .accountID = m_accountID.text(),
        .password = m_password.text(),
        .guestPassword = m_guestPassword.text(),
        .email = m_email.text(),
        .name = m_name.text(),
        .address = m_address.text(),
        .address2 = m_address2.text(),
        .cityName = m_cityName.text(),
        .stateName = m_stateName.text(),
        .countryName = m_countryName.text(),
        .zipCode = m_zipCode.text(),
    };
    return {account, m_confirmPassword.text(), m_confirmGuestPassword.text()};
}

void AccountInfoViewController::saveButton(Control&)
{
    if (isNetworkConnectionNotReachable()) {
        m_alerts.runModal(networkNotReachableAlert());
        return;
    }
    const auto entered = form();
    if (const auto refusal = refusalOf(entered)) {
        displayAlertWithString(std::string(*refusal));
        return;
    }
    const bool isNewAccount = GlobalVariables::getUserIsLoggedIn() == "0";
    auto address = isNewAccount
                       ? web::newAccountAddress(web::serviceRoot(), entered)
                       : web::accountUpdateAddress(web::serviceRoot(), GlobalVariables::getGlobalAccountID(), entered);
    m_webCall.fetch(std::move(address),
                    [self = shared_from_this()](const web::Reply& reply) { self->updateUIWithDictionary(reply); });
}

void AccountInfoViewController::updateUIWithDictionary(const web::Reply& reply)
{
    try {
        const auto accountID = reply.key("data").at(0).key("Id").text();
        if (accountID == "-1") {
            displayAlertWithString(std::string(account_text::kAccountIDTaken));
            return;
        }
        // "0" reports success and keeps the account id; no answer at all stores an absent one. Both are intended.
        if (accountID != "0") {
            GlobalVariables::setGlobalAccountID(accountID);
        }
        m_alerts.runModal(okAlert(account_text::kSavedTitle, account_text::kSaved));
        m_accountInfoHelpLabel.setHidden(true);
        m_accountID.setEnabled(false);
        GlobalVariables::setUserIsLoggedIn("1");
    } catch (const std::exception& exception) {
        m_systemLog.write(std::string("Exception: ") + exception.what());
        displayAlertWithString(std::string(account_text::kNotSaved));
    }
}

void AccountInfoViewController::displayAlertWithString(const std::optional<std::string>& text)
{
    if (text) {
        m_alerts.runModal(okAlert(kErrorTitle, *text));
    }
}

void AccountInfoViewController::controlTextDidChange(platform::TextField& field)
{
    if (session::hasDisallowedRegistrationCharacters(field.text())) {
        field.setText(removingAddressMarks(field.text()));
    }
}

void AccountInfoViewController::helpButton1(Control&) { displayHelp(account_text::kAccountIDHelp); }

void AccountInfoViewController::helpButton2(Control&) { displayHelp(account_text::kPasswordHelp); }

void AccountInfoViewController::helpButton3(Control&) { displayHelp(account_text::kGuestPasswordHelp); }

void AccountInfoViewController::displayHelp(std::string_view text)
{
    m_alerts.runModal(okAlert(account_text::kHelpTitle, text));
}

bool AccountInfoViewController::isNetworkConnectionNotReachable() const
{
    return web::isNetworkConnectionNotReachable();
}

} // namespace vorrano::cloud
