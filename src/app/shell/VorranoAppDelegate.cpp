#include "app/shell/VorranoAppDelegate.h"

#include "app/shell/EULAWindowViewController.h"
#include "app/shell/SetupMenuViewController.h"
#include "app/shell/ShellTexts.h"
#include "cloud/LoginViewController.h"
#include "platform/Layouts.h"
#include "platform/OkAlert.h"
#include "platform/Platform.h"

namespace vorrano::shell {

namespace {

constexpr int kLastOldMajor = 10;
constexpr int kLastOldMinor = 8;

std::shared_ptr<cloud::ScreenWindow> makeSetupMenu()
{
    auto setupMenu = SetupMenuViewController::create();
    setupMenu->awakeFromNib();
    return setupMenu;
}

} // namespace

bool needsUpgrade(const platform::OperatingSystemVersion& version)
{
    return version.major <= kLastOldMajor && version.minor <= kLastOldMinor;
}

VorranoAppDelegate::VorranoAppDelegate()
    : m_alerts(platform::Platform::current().alerts)
    , m_operatingSystem(platform::Platform::current().operatingSystem)
    , m_window(platform::Platform::current().layouts.loadWindow("LoginViewController"))
    , m_loginViewController(
          cloud::LoginViewController::create(m_window->view(), {EULAWindowViewController::create, makeSetupMenu}))
{
    m_loginViewController->awakeFromNib();
    m_window->show();
}

VorranoAppDelegate::~VorranoAppDelegate() = default;

void VorranoAppDelegate::applicationDidFinishLaunching()
{
    if (needsUpgrade(m_operatingSystem.version().value_or(platform::OperatingSystemVersion{}))) {
        displayUpdateOSAlert();
    }
}

void VorranoAppDelegate::displayUpdateOSAlert()
{
    m_alerts.runModal(platform::okAlert(shell_text::kUpgradeTitle, shell_text::kUpgrade));
}

} // namespace vorrano::shell
