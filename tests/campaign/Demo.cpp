#include "campaign/Demo.h"

#include "cloud/LoginViewController.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"
#include "session/GlobalVariables.h"

#include <cerrno>
#include <map>
#include <stdexcept>
#include <utility>

namespace vorrano::campaign {

using namespace std::chrono_literals;
using support::TerminalCall;

namespace {

constexpr int kForGood = 1'000'000;
const std::map<std::string, std::string> kAccount{{"accountID", "ada"},
                                                  {"password", "secret1"},
                                                  {"confirmPassword", "secret1"},
                                                  {"guestPassword", "guest22"},
                                                  {"confirmGuestPassword", "guest22"},
                                                  {"email", "ada@host.example"},
                                                  {"address", "1 Road"},
                                                  {"cityName", "Town"},
                                                  {"stateName", "ST"},
                                                  {"countryName", "Land"},
                                                  {"zipCode", "12345"}};

const char* layoutOf(Screen screen)
{
    switch (screen) {
    case Screen::Login:
        return "LoginViewController";
    case Screen::Account:
        return "AccountInfoViewController";
    case Screen::Register:
        return "RegisterVorranoViewController";
    case Screen::Wifi:
        return "WifiSetupViewController";
    case Screen::Utilities:
        return "UtilitiesViewController";
    }
    return "";
}

int tabOf(Screen screen) { return static_cast<int>(screen) - static_cast<int>(Screen::Account); }

void require(bool holds, const std::string& what)
{
    if (!holds) {
        throw std::logic_error("the campaign can't do this: " + what);
    }
}

} // namespace

std::string imageText() { return ":10000000\r\n:10000010\r\n:00000001\r\n"; }

Demo::Demo(std::filesystem::path image)
    : m_image(std::move(image))
{
    m_world.layouts.prepare("SetupMenuViewController", [](support::FakeView& layout) {
        layout.setTabs("setupTabView", {"Account Information", "Register Vorrano", "Wifi Setup", "Utilities"});
    });
    m_world.wifi.setNetworks(std::vector<std::string>{"Home"});
    m_service.service().addAccount({{"AccountLogin", "ada"}, {"Password", "secret1"}, {"Email", "ada@host.example"}});
    m_service.service().setLatestFirmware("9.50");
    m_vorrano.plug();
    m_program = std::make_unique<shell::VorranoAppDelegate>();
    m_program->applicationDidFinishLaunching();
    m_world.run();
}

Demo::~Demo()
{
    m_program.reset();
    serial::SerialPortManager::releaseShared();
    cloud::LoginViewController::forgetNetworkScan();
    session::GlobalVariables::releaseShared();
    // A request under way still asks the service, and a write the device.
    m_world.time.end();
}

support::FakeView& Demo::view(Screen screen) { return m_world.layouts.view(layoutOf(screen)); }

void Demo::signIn()
{
    view(Screen::Login).type("accountId", "ada");
    view(Screen::Login).type("password", "secret1");
    view(Screen::Login).press("loginButton");
    m_world.advance(2 * VirtualService::kAnswerTime + 1s);
    require(isSignedIn() && isAccountShown(), "sign in");
    forgetAlerts();
}

void Demo::chooseTab(Screen screen)
{
    require(m_world.layouts.view("SetupMenuViewController").selectTab("setupTabView", tabOf(screen)), "choose a tab");
    m_world.run();
}

void Demo::prepare(const Action& action)
{
    const bool beginsWithTheTab = action.kind == Kind::LoadAccount || action.kind == Kind::Register;
    if (action.kind != Kind::SignIn && !beginsWithTheTab) {
        chooseTab(action.screen);
    }
    if (action.screen == Screen::Account) {
        // The form is there once the account has been loaded.
        m_world.advance(2 * VirtualService::kAnswerTime);
        fillAccount();
    }
    if (!beginsWithTheTab) {
        fill(action);
    }
    forgetAlerts();
}

void Demo::fill(const Action& action)
{
    for (const auto& [control, text] : action.fields) {
        const bool isList = control == "securityTypeButton";
        auto& screen = view(action.screen);
        require(isList ? screen.choose(control, text) : screen.type(control, text), "fill in " + control);
    }
    m_world.run();
}

void Demo::fillAccount()
{
    for (const auto& [field, text] : kAccount) {
        view(Screen::Account).setTextQuietly(field, text);
    }
}

void Demo::perform(const Action& action)
{
    if (action.kind == Kind::LoadAccount || action.kind == Kind::Register) {
        chooseTab(action.screen);
    }
    if (action.kind == Kind::LoadAccount) {
        return;
    }
    if (action.kind == Kind::Register) {
        // By then the MAC address is there, or given up.
        m_world.advance(2s + 200ms);
        fill(action);
    }
    answerQuestions(action);
    require(view(action.screen).press(action.button), "press " + action.button);
    m_world.run();
}

void Demo::answerQuestions(const Action& action)
{
    constexpr int kYes = platform::kAlertFirstButton;
    constexpr int kNo = platform::kAlertSecondButton;
    m_world.alerts.forgetAnswers();
    if (action.kind == Kind::Upload) {
        m_world.alerts.queueAnswer(kNo);
        m_world.alerts.queueAnswer(kYes);
        m_world.openPanel.queueFile(m_image);
    } else if (action.kind == Kind::Check) {
        m_world.alerts.queueAnswer(kYes);
        m_world.alerts.queueAnswer(kNo);
    }
}

void Demo::strike(const Fault& fault)
{
    if (const auto* line = std::get_if<LineFault>(&fault.what)) {
        strikeLine(*line);
    } else if (const auto* mood = std::get_if<ServiceMood>(&fault.what)) {
        m_service.setMood(*mood);
    } else {
        m_world.reachability.setFlags(0);
        m_service.setMood(ServiceMood::Refuses);
    }
}

void Demo::strikeDuring(const Fault& fault)
{
    if (std::holds_alternative<LineFault>(fault.what)) {
        m_vorrano.beforeNextBytes([this, fault] { strike(fault); });
    } else {
        m_service.beforeNextAnswer([this, fault] { strike(fault); });
    }
}

void Demo::order(simulator::Fault::Kind kind, std::chrono::milliseconds delay)
{
    simulator::Fault fault;
    fault.kind = kind;
    fault.delay = delay;
    fault.count = kCutAfter;
    fault.bytes = simulator::kNonsense;
    m_vorrano.device().order(fault);
}

void Demo::strikeLine(LineFault fault)
{
    using FaultKind = simulator::Fault::Kind;
    auto& line = m_vorrano.line();
    switch (fault) {
    case LineFault::Silence:
        order(FaultKind::Silence);
        break;
    case LineFault::ShortDelay:
        order(FaultKind::Delay, kShortDelay);
        break;
    case LineFault::LongDelay:
        order(FaultKind::Delay, kLongDelay);
        break;
    case LineFault::Split:
        order(FaultKind::Split);
        break;
    case LineFault::Merge:
        order(FaultKind::Merge);
        break;
    case LineFault::Garbage:
        order(FaultKind::Answer);
        break;
    case LineFault::Cut:
        order(FaultKind::Cut);
        break;
    case LineFault::HangUp:
        order(FaultKind::HangUp);
        break;
    case LineFault::PulledCable:
        // On the main thread, whoever wrote.
        m_world.later(0ns, [this] { m_vorrano.unplug(); });
        break;
    case LineFault::LinesGone:
        line.failNext(TerminalCall::ModemLines, ENXIO, kForGood);
        break;
    case LineFault::LinesUnreadable:
        line.failNext(TerminalCall::ModemLines, EIO, kForGood);
        break;
    case LineFault::WriteFails:
        line.failNext(TerminalCall::Write, EIO);
        break;
    case LineFault::WritesInParts:
        line.writeAtMost(1);
        break;
    case LineFault::SlowWrite:
        line.delayNext(TerminalCall::Write, kSlowWrite);
        break;
    case LineFault::ReadFails:
        line.failNext(TerminalCall::Read, EIO);
        break;
    case LineFault::WaitFails:
        line.failNext(TerminalCall::WaitReadable, EIO, 3);
        break;
    case LineFault::HeldByAnother:
        line.setHeldByAnother(true);
        break;
    }
}

void Demo::heal()
{
    m_vorrano.beforeNextBytes({});
    m_service.beforeNextAnswer({});
    m_service.setMood(ServiceMood::Well);
    m_world.reachability.setFlags(platform::kReachable);
    m_vorrano.device().clearFaults();
    m_vorrano.line().recover();
    settle();
}

void Demo::settle()
{
    // What is on its way arrives; a device that is left in the middle of something is plugged in anew.
    while (!m_vorrano.isQuiet()) {
        m_world.advance(100ms);
    }
    if (!m_vorrano.isPlugged() || !m_vorrano.device().isIdle()) {
        m_vorrano.unplug();
        m_world.advance(200ms);
        m_vorrano.plug();
        m_world.advance(50ms);
    }
    forgetAlerts();
}

bool Demo::isBusy(Screen screen)
{
    const bool hasProgress = screen == Screen::Wifi || screen == Screen::Utilities || screen == Screen::Login;
    return hasProgress && view(screen).alpha() < 1.0;
}

bool Demo::isSignedIn()
{
    return m_world.layouts.hasWindow("SetupMenuViewController") &&
           m_world.layouts.window("SetupMenuViewController").isVisible();
}

bool Demo::isAccountShown() { return view(Screen::Account).text("email") == "ada@host.example"; }

bool Demo::isImageWhole()
{
    auto sent = imageText();
    std::erase(sent, '\n');
    return m_vorrano.device().image().bytes == sent;
}

} // namespace vorrano::campaign
