#pragma once

#include "cloud/AccountInfoViewController.h"
#include "unit/cloud/CloudTest.h"

#include <chrono>
#include <map>

namespace vorrano::cloud {

using namespace std::chrono_literals;
using session::GlobalVariables;

inline constexpr auto kHelpLabel = "accountInfoHelpLabel";

inline const std::vector<std::string> kFields{
    "accountID", "password", "confirmPassword", "guestPassword", "confirmGuestPassword", "email",  "name",
    "address",   "address2", "cityName",        "stateName",     "countryName",          "zipCode"};

inline const std::map<std::string, std::string> kFilled{{"accountID", "ada1815"},
                                                        {"password", "secret1"},
                                                        {"confirmPassword", "secret1"},
                                                        {"guestPassword", "guest22"},
                                                        {"confirmGuestPassword", "guest22"},
                                                        {"email", "ada@host.example"},
                                                        {"name", "Ada"},
                                                        {"address", "1 Main St"},
                                                        {"address2", "Top"},
                                                        {"cityName", "Town"},
                                                        {"stateName", "ST"},
                                                        {"countryName", "Land"},
                                                        {"zipCode", "12345"}};
inline const std::string kFilledPath = "//secret1/ada@host.example/Ada/1%20Main%20St/Top/Town/ST/Land/12345/guest22";

inline const std::string kRecord =
    R"({"data":[{"AccountLogin":"ada1815","Password":"secret1","GuestPassword":"guest22",)"
    R"("Email":"ada@host.example","Name":"Ada","Address1":"1 Main St","Address2":"Top",)"
    R"("City":"Town","State":"ST","Country":"Land","ZipCode":"12345"},{"AccountLogin":"x"}]})";

inline const auto kSaved = alertOf("Success!", "Account Information Saved Successfully. Proceed to Register Vorrano");
inline const auto kTaken = alertOf("ERROR", "This Account ID already exists. Please enter another Account ID");
inline const auto kNotSaved = alertOf("ERROR", "Failed to Save. Please Try Again");

// Those that no reader of a first record can read.
inline const auto kWrongShapes =
    testing::Values(ShapeCase{"ABareArray", "[]"}, ShapeCase{"DataNull", R"({"data":null})"},
                    ShapeCase{"DataAText", R"({"data":"0"})"}, ShapeCase{"DataAnObject", R"({"data":{"Id":"1"}})"},
                    ShapeCase{"DataEmpty", R"({"data":[]})"}, ShapeCase{"ARecordThatIsNull", R"({"data":[null]})"},
                    ShapeCase{"ARecordThatIsNoObject", R"({"data":["hunter2"]})"});

// The account tab, and the person at it.
struct AccountTab : CloudTest {
    std::shared_ptr<AccountInfoViewController> controller;

    void TearDown() override
    {
        controller.reset();
        CloudTest::TearDown();
    }

    support::FakeView& view() { return world.layouts.view("AccountInfoViewController"); }

    // As the setup window does on choosing the tab.
    void chooseTab()
    {
        controller = AccountInfoViewController::create();
        controller->awakeFromNib();
    }

    void openForNewAccount()
    {
        GlobalVariables::setUserIsLoggedIn("0");
        chooseTab();
    }

    void openSignedIn(const std::string& accountID, const std::string& record)
    {
        GlobalVariables::setUserIsLoggedIn("1");
        GlobalVariables::setGlobalAccountID(accountID);
        world.urlFetch.answer(record);
        chooseTab();
        world.run();
        world.urlFetch.forget();
    }

    void fillForm()
    {
        for (const auto& [field, text] : kFilled) {
            view().setTextQuietly(field, text);
        }
    }

    void save()
    {
        EXPECT_TRUE(view().press("saveButton"));
        world.run();
    }

    std::map<std::string, std::string> form()
    {
        std::map<std::string, std::string> texts;
        for (const auto& field : kFields) {
            texts[field] = view().text(field);
        }
        return texts;
    }

    std::map<std::string, std::string> emptyForm()
    {
        std::map<std::string, std::string> texts;
        for (const auto& field : kFields) {
            texts[field] = "";
        }
        return texts;
    }
};

} // namespace vorrano::cloud
