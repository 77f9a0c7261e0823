#include "QtProgram.h"

#include "support/DeviceLanguage.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <gmock/gmock.h>

#include <map>
#include <ostream>

namespace vorrano::qt {
namespace {

using support::kSetup;

enum class Kind { Button, TextField, PopUpButton, ProgressIndicator, ProgressBar, Label, TabView };

struct Outlet {
    const char* layout;
    const char* name;
    Kind kind;
};

void PrintTo(const Outlet& outlet, std::ostream* out) { *out << outlet.layout << " " << outlet.name; }

platform::Control& connect(platform::View& view, const Outlet& outlet)
{
    switch (outlet.kind) {
    case Kind::Button:
        return view.button(outlet.name);
    case Kind::TextField:
        return view.textField(outlet.name);
    case Kind::PopUpButton:
        return view.popUpButton(outlet.name);
    case Kind::ProgressIndicator:
        return view.progressIndicator(outlet.name);
    case Kind::ProgressBar:
        return view.progressBar(outlet.name);
    case Kind::Label:
        return view.label(outlet.name);
    case Kind::TabView:
        return view.tabView(outlet.name);
    }
    throw platform::LayoutError("no kind");
}

constexpr const char* kLogin = "LoginViewController";
constexpr const char* kAgreement = "EULAWindowViewController";
constexpr const char* kAccount = "AccountInfoViewController";
constexpr const char* kRegister = "RegisterVorranoViewController";
constexpr const char* kWifi = "WifiSetupViewController";
constexpr const char* kUtilities = "UtilitiesViewController";

const std::vector<Outlet> kOutlets{
    {kLogin, "accountId", Kind::TextField},
    {kLogin, "password", Kind::TextField},
    {kLogin, "loginProgressIndicator", Kind::ProgressIndicator},
    {kLogin, "loginButton", Kind::Button},
    {kLogin, "registerVorranoButton", Kind::Button},
    {kAgreement, "buttonAccept", Kind::Button},
    {kAgreement, "buttonCancel", Kind::Button},
    {kSetup, "setupTabView", Kind::TabView},
    {kAccount, "accountID", Kind::TextField},
    {kAccount, "password", Kind::TextField},
    {kAccount, "confirmPassword", Kind::TextField},
    {kAccount, "guestPassword", Kind::TextField},
    {kAccount, "confirmGuestPassword", Kind::TextField},
    {kAccount, "email", Kind::TextField},
    {kAccount, "name", Kind::TextField},
    {kAccount, "address", Kind::TextField},
    {kAccount, "address2", Kind::TextField},
    {kAccount, "cityName", Kind::TextField},
    {kAccount, "stateName", Kind::TextField},
    {kAccount, "countryName", Kind::TextField},
    {kAccount, "zipCode", Kind::TextField},
    {kAccount, "accountInfoHelpLabel", Kind::Label},
    {kAccount, "saveButton", Kind::Button},
    {kAccount, "helpButton1", Kind::Button},
    {kAccount, "helpButton2", Kind::Button},
    {kAccount, "helpButton3", Kind::Button},
    {kRegister, "vorranoName", Kind::TextField},
    {kRegister, "saveButton", Kind::Button},
    {kRegister, "connectionNoticeLabel", Kind::Label},
    {kWifi, "wifiSSIDButton", Kind::PopUpButton},
    {kWifi, "SSID", Kind::TextField},
    {kWifi, "securityTypeButton", Kind::PopUpButton},
    {kWifi, "password", Kind::TextField},
    {kWifi, "wepKeyField", Kind::TextField},
    {kWifi, "savePasswordButton", Kind::Button},
    {kWifi, "saveKeyButton", Kind::Button},
    {kWifi, "loginProgressIndicator", Kind::ProgressIndicator},
    {kWifi, "buttonScanSSID", Kind::Button},
    {kWifi, "connectionNoticeLabel", Kind::Label},
    {kUtilities, "setSSID", Kind::TextField},
    {kUtilities, "setPassword", Kind::TextField},
    {kUtilities, "setThrottleTextField", Kind::TextField},
    {kUtilities, "temperatureDisplayUnitButton", Kind::PopUpButton},
    {kUtilities, "loginProgressIndicator", Kind::ProgressIndicator},
    {kUtilities, "connectionNoticeLabel", Kind::Label},
    {kUtilities, "buttonUpdateFirmware", Kind::Button},
    {kUtilities, "uploadProgressBar", Kind::ProgressBar},
    {kUtilities, "uploadProgressLabel", Kind::Label},
};

class Outlets : public support::QtProgram, public ::testing::WithParamInterface<Outlet> {};

TEST_P(Outlets, IsInItsLayoutAndOfItsKind)
{
    const auto view = layouts.loadView(GetParam().layout);

    auto& control = connect(*view, GetParam());

    EXPECT_EQ(&connect(*view, GetParam()), &control);
}

INSTANTIATE_TEST_SUITE_P(AllLayouts, Outlets, ::testing::ValuesIn(kOutlets),
                         [](const auto& test) { return std::string(test.param.layout) + "_" + test.param.name; });

class DeviceButtons : public support::QtProgram, public ::testing::WithParamInterface<support::LanguageButton> {};

TEST_P(DeviceButtons, AreInTheirLayoutWithWhatTheySend)
{
    const auto view = layouts.loadView(GetParam().screen);

    EXPECT_NO_THROW((void)view->button(GetParam().button));
    for (const auto& [field, value, isList] : GetParam().fields) {
        if (isList) {
            EXPECT_NO_THROW((void)view->popUpButton(field));
        } else {
            EXPECT_NO_THROW((void)view->textField(field));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllLayouts, DeviceButtons, ::testing::ValuesIn(support::languageButtons()),
                         [](const auto& test) { return test.param.testName(); });

class EveryLayout : public support::QtProgram, public ::testing::WithParamInterface<const char*> {
protected:
    std::shared_ptr<platform::Window> window = layouts.loadWindow(GetParam());

    template <class Widget>
    QList<Widget*> all()
    {
        return frame(*window).findChildren<Widget*>();
    }
};

TEST_P(EveryLayout, FitsAScreenOf1366By768)
{
    window->show();

    EXPECT_LE(frame(*window).width(), 1366);
    EXPECT_LE(frame(*window).height(), 768 - 60);
}

TEST_P(EveryLayout, NamesEveryFieldAndListByALabelBesideIt)
{
    QList<QWidget*> named;
    for (auto* const label : all<QLabel>()) {
        named.push_back(label->buddy());
    }

    for (auto* const field : all<QLineEdit>()) {
        EXPECT_TRUE(named.contains(field)) << field->objectName().toStdString();
        EXPECT_FALSE(field->accessibleName().isEmpty()) << field->objectName().toStdString();
    }
    for (auto* const list : all<QComboBox>()) {
        EXPECT_TRUE(named.contains(list)) << list->objectName().toStdString();
    }
}

TEST_P(EveryLayout, HasNoMnemonicTwice)
{
    std::map<std::string, int> times;
    for (auto* const label : all<QLabel>()) {
        if (label->buddy() != nullptr) {
            ++times[QKeySequence::mnemonic(label->text()).toString().toStdString()];
        }
    }
    for (auto* const button : all<QAbstractButton>()) {
        ++times[QKeySequence::mnemonic(button->text()).toString().toStdString()];
    }
    times.erase("");

    for (const auto& [key, count] : times) {
        EXPECT_EQ(count, 1) << key;
    }
}

TEST_P(EveryLayout, MasksEveryPasswordAndOffersALookAtIt)
{
    for (auto* const field : all<QLineEdit>()) {
        const QString name = field->objectName();
        const bool secret =
            name.contains(QLatin1String("password"), Qt::CaseInsensitive) || name == QLatin1String("wepKeyField");
        EXPECT_EQ(field->echoMode(), secret ? QLineEdit::Password : QLineEdit::Normal) << name.toStdString();
        int looks = 0;
        for (auto* const button : all<QAbstractButton>()) {
            looks += button->property("reveals").toString().split(u' ').contains(name) ? 1 : 0;
        }
        EXPECT_EQ(looks, secret ? 1 : 0) << name.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(AllLayouts, EveryLayout,
                         ::testing::Values(kLogin, kAgreement, kSetup, kAccount, kRegister, kWifi, kUtilities),
                         [](const auto& test) { return std::string(test.param); });

class Layouts : public support::QtProgram {};

TEST_F(Layouts, FitsAScreenOf1366By768WithAnyTabOnIt)
{
    const auto setup = layouts.loadWindow(kSetup);
    auto& tabs = setup->view()->tabView("setupTabView");
    int index = 0;
    for (const auto* const layout : {kAccount, kRegister, kWifi, kUtilities}) {
        tabs.setView(index++, layouts.loadView(layout));
    }

    setup->show();

    EXPECT_LE(frame(*setup).width(), 1366);
    EXPECT_LE(frame(*setup).height(), 768 - 60);
}

TEST_F(Layouts, RefusesALayoutThatDoesNotExist)
{
    EXPECT_THROW((void)layouts.loadView("NobodysViewController"), platform::LayoutError);
    EXPECT_THROW((void)layouts.loadWindow(""), platform::LayoutError);
}

TEST_F(Layouts, RefusesAnOutletThatDoesNotExistOrIsOfAnotherKind)
{
    const auto view = layouts.loadView(kLogin);

    EXPECT_THROW((void)view->button("nobody"), platform::LayoutError);
    EXPECT_THROW((void)view->button("accountId"), platform::LayoutError);
    EXPECT_THROW((void)view->label("loginProgressIndicator"), platform::LayoutError);
    EXPECT_THROW((void)view->progressIndicator("logo"), platform::LayoutError);
}

TEST_F(Layouts, FindsInAViewNothingOfAViewThatIsShownInIt)
{
    const auto setup = layouts.loadView(kSetup);
    setup->tabView("setupTabView").setView(0, layouts.loadView(kAccount));

    EXPECT_THROW((void)setup->textField("email"), platform::LayoutError);
}

TEST_F(Layouts, StartsTheWifiScreenWithTheKeyControlsDisabled)
{
    const auto view = layouts.loadView(kWifi);

    EXPECT_FALSE(view->textField("wepKeyField").isEnabled());
    EXPECT_FALSE(view->button("saveKeyButton").isEnabled());
    EXPECT_TRUE(view->textField("password").isEnabled());
    EXPECT_TRUE(view->button("savePasswordButton").isEnabled());
}

TEST_F(Layouts, LeavesTheConnectionNoticeToTheProgram)
{
    for (const auto* const layout : {kRegister, kWifi, kUtilities}) {
        const auto view = layouts.loadView(layout);
        EXPECT_EQ(widget<QLabel>(*view, "connectionNoticeLabel").text(), "") << layout;
    }
}

TEST_F(Layouts, LeavesNoWidgetBehindWhenAWindowIsDropped)
{
    QPointer<QWidget> root;
    QPointer<QWidget> whole;
    {
        const auto window = shown(kWifi);
        root = &dynamic_cast<QtView&>(*window->view()).root();
        whole = &frame(*window);
    }

    EXPECT_TRUE(spinUntil([&] { return root.isNull() && whole.isNull(); }));
}

} // namespace
} // namespace vorrano::qt
