#include "cloud/AccountInfoViewController.h"

#include "cloud/AccountTexts.h"
#include "cloud/CloudAlerts.h"
#include "platform/ActionOf.h"
#include "platform/MainThreadDeleter.h"
#include "platform/Platform.h"
#include "platform/System.h"
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
    const auto controller =
        platform::destroyedOnMainThread(new AccountInfoViewController, Platform::current().mainQueue);
    controller->connectActions();
    return controller;
}

AccountInfoViewController::Fields AccountInfoViewController::fieldsOf(platform::View& view)
{
    return {
        .accountID = view.textField("accountID"),
        .password = view.textField("password"),
        .confirmPassword = view.textField("confirmPassword"),
        .guestPassword = view.textField("guestPassword"),
        .confirmGuestPassword = view.textField("confirmGuestPassword"),
        .email = view.textField("email"),
        .name = view.textField("name"),
        .address = view.textField("address"),
        .address2 = view.textField("address2"),
        .cityName = view.textField("cityName"),
        .stateName = view.textField("stateName"),
        .countryName = view.textField("countryName"),
        .zipCode = view.textField("zipCode"),
    };
}

std::array<platform::TextField*, 13> AccountInfoViewController::allFields() const
{
    const auto& f = m_fields;
    return {&f.accountID, &f.password,    &f.confirmPassword, &f.guestPassword, &f.confirmGuestPassword,
            &f.email,     &f.name,        &f.address,         &f.address2,      &f.cityName,
            &f.stateName, &f.countryName, &f.zipCode};
}

AccountForm AccountInfoViewController::form() const
{
    const web::Account account{
        .accountID = m_fields.accountID.text(),
        .password = m_fields.password.text(),
        .guestPassword = m_fields.guestPassword.text(),
        .email = m_fields.email.text(),
        .name = m_fields.name.text(),
        .address = m_fields.address.text(),
        .address2 = m_fields.address2.text(),
        .cityName = m_fields.cityName.text(),
        .stateName = m_fields.stateName.text(),
        .countryName = m_fields.countryName.text(),
        .zipCode = m_fields.zipCode.text(),
    };
    return {account, m_fields.confirmPassword.text(), m_fields.confirmGuestPassword.text()};
}

AccountInfoViewController::AccountInfoViewController()
    : m_alerts(Platform::current().alerts)
    , m_systemLog(Platform::current().systemLog)
    , m_view(Platform::current().layouts.loadView("AccountInfoViewController"))
    , m_fields(fieldsOf(*m_view))
    , m_accountInfoHelpLabel(m_view->label("accountInfoHelpLabel"))
{}

AccountInfoViewController::~AccountInfoViewController() = default;

void AccountInfoViewController::connectActions()
{
    using Handler = void (AccountInfoViewController::*)(Control&);
    const auto connect = [this](std::string_view button, Handler handler) {
        m_view->button(button).onPress(platform::actionOf(weak_from_this(), handler));
    };
    connect("saveButton", &AccountInfoViewController::saveButton);
    connect("helpButton1", &AccountInfoViewController::helpButton1);
    connect("helpButton2", &AccountInfoViewController::helpButton2);
    connect("helpButton3", &AccountInfoViewController::helpButton3);
}

void AccountInfoViewController::awakeFromNib()
{
    platform::assertMainThread();
    if (GlobalVariables::getUserIsLoggedIn() == "1") {
        requestAccountInfo();
        m_accountInfoHelpLabel.setHidden(true);
    } else {
        m_accountInfoHelpLabel.setHidden(false);
    }
    for (auto* field : allFields()) {
        field->onChange([weak = weak_from_this(), field](Control&) {
            if (const auto self = weak.lock()) {
                self->controlTextDidChange(*field);
            }
        });
    }
}

void AccountInfoViewController::requestAccountInfo()
{
    m_fields.accountID.setEnabled(false);
    m_webCall.fetch(web::accountAddress(web::serviceRoot(), GlobalVariables::getGlobalAccountID()),
                    [self = shared_from_this()](const web::Reply& reply) { self->updateViewWithAccountInfo(reply); });
}

void AccountInfoViewController::updateViewWithAccountInfo(const web::Reply& reply)
{
    platform::assertMainThread();
    // No guard: a value that is no text ends the filling where it stands.
    const auto record = reply.key("data").at(0);
    const auto value = [&record](std::string_view key) { return record.key(key).text().value_or(""); };
    m_fields.accountID.setText(value("AccountLogin"));
    m_fields.password.setText(value("Password"));
    m_fields.confirmPassword.setText(value("Password"));
    m_fields.email.setText(value("Email"));
    m_fields.name.setText(value("Name"));
    m_fields.address.setText(value("Address1"));
    m_fields.address2.setText(value("Address2"));
    m_fields.cityName.setText(value("City"));
    m_fields.stateName.setText(value("State"));
    m_fields.countryName.setText(value("Country"));
    m_fields.zipCode.setText(value("ZipCode"));
    m_fields.guestPassword.setText(value("GuestPassword"));
    m_fields.confirmGuestPassword.setText(value("GuestPassword"));
}

void AccountInfoViewController::saveButton(Control&)
{
    if (isNetworkConnectionNotReachable()) {
        m_alerts.runModal(networkNotReachableAlert());
        return;
    }
    const auto entered = form();
    if (const auto refusal = refusalOf(entered)) {
        displayAlertWithString(refusal);
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
    platform::assertMainThread();
    try {
        const auto accountID = reply.key("data").at(0).key("Id").text();
        if (accountID == "-1") {
            displayAlertWithString(account_text::kAccountIDTaken);
            return;
        }
        // "0" reports success and keeps the account id; no answer at all stores an absent one. Both are intended.
        if (accountID != "0") {
            GlobalVariables::setGlobalAccountID(accountID);
        }
        m_alerts.runModal(platform::okAlert(account_text::kSavedTitle, account_text::kSaved));
        m_accountInfoHelpLabel.setHidden(true);
        m_fields.accountID.setEnabled(false);
        GlobalVariables::setUserIsLoggedIn("1");
    } catch (const std::exception& exception) {
        m_systemLog.write(std::string("Exception: ") + exception.what());
        displayAlertWithString(account_text::kNotSaved);
    }
}

void AccountInfoViewController::displayAlertWithString(std::optional<std::string_view> text)
{
    platform::showError(m_alerts, text);
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
    m_alerts.runModal(platform::okAlert(account_text::kHelpTitle, text));
}

bool AccountInfoViewController::isNetworkConnectionNotReachable() const
{
    return web::isNetworkConnectionNotReachable();
}

} // namespace vorrano::cloud
