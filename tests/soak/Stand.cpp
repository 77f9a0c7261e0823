#include "soak/Stand.h"

#include "cloud/LoginViewController.h"
#include "serial/SerialPort.h"
#include "serial/SerialPortManager.h"
#include "session/GlobalVariables.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QThreadPool>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <latch>
#include <stdexcept>
#include <utility>

namespace vorrano::soak {

namespace {

constexpr std::chrono::seconds kPatience{120};
constexpr std::chrono::milliseconds kLifeOfAFreeThread{100}; // of Qt's own pool
// More than the program's pool keeps when it has nothing to do.
constexpr std::ptrdiff_t kThreadsAtOnce = 8;
constexpr std::chrono::milliseconds kLook{2};

class Reachable : public platform::ReachabilityReference {
public:
    [[nodiscard]] std::optional<platform::ReachabilityFlags> flags() override { return platform::kReachable; }
    bool setCallback(std::function<void(platform::ReachabilityFlags)>) override { return true; }
    bool schedule() override { return true; }
    void unschedule() override {}
};

} // namespace

int AnsweredAlerts::runModal(const platform::Alert& alert)
{
    ++m_count;
    m_last = alert;
    if (m_answers.empty()) {
        return platform::kAlertFirstButton;
    }
    const int answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

std::unique_ptr<platform::ReachabilityReference> AlwaysReachable::createWithName(const std::string&)
{
    return std::make_unique<Reachable>();
}

std::unique_ptr<platform::ReachabilityReference> AlwaysReachable::createWithAddress(const platform::SocketAddress&)
{
    return std::make_unique<Reachable>();
}

std::optional<std::string> ServiceFetch::contentsOfUrl(const std::string& address)
{
    const std::lock_guard lock(m_mutex);
    return m_service.answer(address.substr(address.find('/', address.find("://") + 3))).body;
}

void ServiceFetch::addAccount()
{
    m_service.addAccount({{"AccountLogin", "ada"}, {"Password", "secret1"}, {"Email", "ada@host.example"}});
}

Stand::Stand(int& argc, char** argv, std::filesystem::path image)
    : m_application(argc, argv, m_log)
    , m_openPanel(std::move(image))
    , m_registry([this] {
        auto source = std::make_unique<PtySource>();
        m_source = source.get();
        return std::make_unique<linux_platform::UdevDeviceRegistry>(m_mainQueue, std::move(source));
    }())
    , m_terminal(*m_registry)
    , m_portAccess(*m_registry)
    , m_platform(platform::Interfaces{m_layouts, m_alerts, m_openPanel, m_mainQueue, m_backgroundQueue,
                                      m_notificationCentre, m_terminal, *m_registry, m_wifi, m_reachability, m_urlFetch,
                                      m_powerEvents, m_stayAwake, m_portAccess, m_pause, m_log, m_operatingSystem,
                                      "https://service.example"})
{
    m_urlFetch.addAccount();
    QThreadPool::globalInstance()->setExpiryTimeout(static_cast<int>(kLifeOfAFreeThread.count()));
    // A condition may come true without an event.
    m_look.start(kLook);
    m_program = std::make_unique<shell::VorranoAppDelegate>();
}

Stand::~Stand()
{
    unplug();
    // The reader of a line goes on until its port has been told.
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (isVorranoListed() && std::chrono::steady_clock::now() < end) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    m_mainQueue.endAndDrain();
    m_program.reset();
    serial::SerialPortManager::releaseShared();
    cloud::LoginViewController::forgetNetworkScan();
    session::GlobalVariables::releaseShared();
    m_backgroundQueue.stop();
    if (!m_backgroundQueue.joinWithin(kPatience)) {
        std::cerr << "a thread does not end" << std::endl;
        std::abort();
    }
}

void Stand::fillThreadPool()
{
    const auto all = std::make_shared<std::latch>(kThreadsAtOnce);
    for (auto i = kThreadsAtOnce; i > 0; --i) {
        m_backgroundQueue.async([all] { all->arrive_and_wait(); });
    }
    runUntil("as many threads at once", [&] { return all->try_wait(); });
}

QWidget& Stand::find(const char* name)
{
    for (auto* const window : QApplication::topLevelWidgets()) {
        for (auto* const widget : window->findChildren<QWidget*>(QString::fromLatin1(name))) {
            if (widget->isVisible()) {
                return *widget;
            }
        }
    }
    throw std::runtime_error(std::string("no such control on the screen: ") + name);
}

void Stand::runUntil(const std::string& what, const std::function<bool()>& condition)
{
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            throw std::runtime_error("not in time: " + what);
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        // Outside of a loop nobody else does it.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void Stand::signIn()
{
    dynamic_cast<QLineEdit&>(find("accountId")).setText("ada");
    dynamic_cast<QLineEdit&>(find("password")).setText("secret1");
    dynamic_cast<QAbstractButton&>(find("loginButton")).click();
    runUntil("the setup window", [] {
        const auto windows = QApplication::topLevelWidgets();
        return std::any_of(windows.begin(), windows.end(), [](const QWidget* window) {
            return window->isVisible() && window->findChild<QTabWidget*>() != nullptr;
        });
    });
}

void Stand::plug() { m_source->plug(m_vorrano.plug()); }

void Stand::unplug()
{
    m_vorrano.unplug();
    m_source->unplug();
}

platform::Alert Stand::press(const char* button, std::size_t alerts)
{
    const auto before = m_alerts.count();
    dynamic_cast<QAbstractButton&>(find(button)).click();
    runUntil(std::string("what comes of ") + button, [&] { return m_alerts.count() >= before + alerts; });
    return m_alerts.last();
}

void Stand::chooseTab(int index)
{
    auto& tabs = dynamic_cast<QTabWidget&>(find("setupTabView"));
    tabs.setCurrentIndex(index);
    // What the tab begins with has been handed in by then.
    bool hasRun = false;
    m_mainQueue.async([&] { hasRun = true; });
    runUntil("the tab", [&] { return hasRun; });
}

bool Stand::isVorranoListed()
{
    return !serial::SerialPortManager::sharedSerialPortManager()->availablePorts().empty();
}

} // namespace vorrano::soak
