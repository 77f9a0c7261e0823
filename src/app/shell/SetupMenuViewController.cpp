#include "app/shell/SetupMenuViewController.h"

#include "cloud/AccountInfoViewController.h"
#include "cloud/RegisterVorranoViewController.h"
#include "device/UtilitiesViewController.h"
#include "device/WifiSetupViewController.h"
#include "platform/Layouts.h"
#include "platform/Platform.h"
#include "platform/System.h"

namespace vorrano::shell {

namespace {

// The labels are the keys by which the tabs are told apart; each belongs to one page.
constexpr std::string_view kAccountLabel = "Account Information";
constexpr std::string_view kRegisterLabel = "Register Vorrano";
constexpr std::string_view kWifiLabel = "Wifi Setup";
constexpr std::string_view kUtilitiesLabel = "Utilities";
constexpr int kAccountPage = 0;
constexpr int kRegisterPage = 1;
constexpr int kWifiPage = 2;
constexpr int kUtilitiesPage = 3;

} // namespace

std::shared_ptr<SetupMenuViewController> SetupMenuViewController::create()
{
    return std::make_shared<SetupMenuViewController>();
}

SetupMenuViewController::SetupMenuViewController()
    : m_window(platform::Platform::current().layouts.loadWindow("SetupMenuViewController"))
    , m_setupTabView(m_window->view()->tabView("setupTabView"))
{}

SetupMenuViewController::~SetupMenuViewController() = default;

void SetupMenuViewController::awakeFromNib()
{
    platform::assertMainThread();
    m_setupTabView.onSelect([weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->tabViewDidSelectTabViewItem();
        }
    });
    begin(m_accountInfoViewController, kAccountPage);
}

void SetupMenuViewController::tabViewDidSelectTabViewItem()
{
    platform::assertMainThread();
    const auto label = m_setupTabView.selectedLabel();
    if (label == kAccountLabel) {
        begin(m_accountInfoViewController, kAccountPage);
    } else if (label == kRegisterLabel) {
        begin(m_registerVorranoViewController, kRegisterPage);
    } else if (label == kWifiLabel) {
        begin(m_wifiSetupViewController, kWifiPage);
    } else if (label == kUtilitiesLabel) {
        begin(m_utilitiesViewController, kUtilitiesPage);
    }
}

// The view is on the page before the controller awakes, so that an alert at its start is shown over its own screen.
template <class Controller>
void SetupMenuViewController::begin(std::shared_ptr<Controller>& controller, int index)
{
    const auto created = Controller::create();
    controller = created;
    m_setupTabView.setView(index, created->view());
    created->awakeFromNib();
}

} // namespace vorrano::shell
