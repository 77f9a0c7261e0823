#pragma once

#include "cloud/AccountForm.h"
#include "platform/Layouts.h"
#include "web/Reply.h"
#include "web/WebCall.h"

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vorrano::platform {
class Alerts;
class SystemLog;
} // namespace vorrano::platform

namespace vorrano::cloud {

// The account tab: shows the signed-in account, or an empty form for a new one, and saves it.
//
// Controls: the thirteen text fields named as in AccountForm, the label accountInfoHelpLabel, the buttons saveButton,
// helpButton1, helpButton2 and helpButton3.
// Threads: the main thread; the last reference may fall on any.
// Lifetime: the setup window's, until its tab is chosen again; a call under way holds it too, so that a reply that
// comes after that is still reported.
class AccountInfoViewController : public std::enable_shared_from_this<AccountInfoViewController> {
public:
    // Loads the view. awakeFromNib() is the caller's, once it has stored the controller.
    [[nodiscard]] static std::shared_ptr<AccountInfoViewController> create();

    AccountInfoViewController(const AccountInfoViewController&) = delete;
    AccountInfoViewController& operator=(const AccountInfoViewController&) = delete;
    ~AccountInfoViewController();

    [[nodiscard]] const std::shared_ptr<platform::View>& view() const { return m_view; }

    void awakeFromNib();

    // Of the record, though nothing gives them a value.
    [[nodiscard]] const std::map<std::string, std::string>& accountInfoDictionary() const
    {
        return m_accountInfoDictionary;
    }
    [[nodiscard]] bool poundSign() const { return m_poundSign; }

protected:
    AccountInfoViewController();

    void requestAccountInfo();
    void updateViewWithAccountInfo(const web::Reply& reply);
    void saveButton(platform::Control& sender);
    void updateUIWithDictionary(const web::Reply& reply);
    // Nothing for an absent text.
    void displayAlertWithString(std::optional<std::string_view> text);
    void controlTextDidChange(platform::TextField& field);
    void helpButton1(platform::Control& sender);
    void helpButton2(platform::Control& sender);
    void helpButton3(platform::Control& sender);
    [[nodiscard]] bool isNetworkConnectionNotReachable() const;

private:
    // The thirteen text fields, named as in AccountForm.
    struct Fields {
        platform::TextField& accountID;
        platform::TextField& password;
        platform::TextField& confirmPassword;
        platform::TextField& guestPassword;
        platform::TextField& confirmGuestPassword;
        platform::TextField& email;
        platform::TextField& name;
        platform::TextField& address;
        platform::TextField& address2;
        platform::TextField& cityName;
        platform::TextField& stateName;
        platform::TextField& countryName;
        platform::TextField& zipCode;
    };

    [[nodiscard]] static Fields fieldsOf(platform::View& view);
    [[nodiscard]] std::array<platform::TextField*, 13> allFields() const;
    [[nodiscard]] AccountForm form() const;
    void connectActions();
    void displayHelp(std::string_view text);

    platform::Alerts& m_alerts;
    platform::SystemLog& m_systemLog;
    web::WebCall m_webCall;
    std::shared_ptr<platform::View> m_view;
    Fields m_fields;
    platform::Label& m_accountInfoHelpLabel;
    std::map<std::string, std::string> m_accountInfoDictionary;
    bool m_poundSign = false;
};

} // namespace vorrano::cloud
