#include "platform/qt/QtLayouts.h"

#include "platform/qt/QtAccessibility.h"

#include "ui_AccountInfoViewController.h"
#include "ui_EULAWindowViewController.h"
#include "ui_LoginViewController.h"
#include "ui_RegisterVorranoViewController.h"
#include "ui_SetupMenuViewController.h"
#include "ui_UtilitiesViewController.h"
#include "ui_WifiSetupViewController.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <utility>

namespace vorrano::qt {

namespace {

struct Layout {
    std::string_view name;
    void (*setUp)(QWidget* root);
};

template <class Generated>
void setUp(QWidget* root)
{
    Generated().setupUi(root);
}

constexpr std::array kLayouts{
    Layout{"LoginViewController", setUp<Ui::LoginViewController>},
    Layout{"EULAWindowViewController", setUp<Ui::EULAWindowViewController>},
    Layout{"SetupMenuViewController", setUp<Ui::SetupMenuViewController>},
    Layout{"AccountInfoViewController", setUp<Ui::AccountInfoViewController>},
    Layout{"RegisterVorranoViewController", setUp<Ui::RegisterVorranoViewController>},
    Layout{"WifiSetupViewController", setUp<Ui::WifiSetupViewController>},
    Layout{"UtilitiesViewController", setUp<Ui::UtilitiesViewController>},
};

} // namespace

QtLayouts::QtLayouts(const QtSurroundings& surroundings, std::function<void()> lastClosed)
    : m_surroundings(surroundings)
    , m_lastClosed(std::move(lastClosed))
{
    installAccessibility();
}

QtLayouts::~QtLayouts()
{
    // The event loop has ended: what was left for it to delete goes now.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::shared_ptr<platform::View> QtLayouts::loadView(std::string_view name) { return load(name); }

std::shared_ptr<platform::Window> QtLayouts::loadWindow(std::string_view name)
{
    auto window = std::make_shared<QtWindow>(load(name), m_surroundings, [this] { closedByPerson(); });
    std::erase_if(m_windows, [](const auto& known) { return known.expired(); });
    m_windows.push_back(window);
    return window;
}

std::shared_ptr<QtView> QtLayouts::load(std::string_view name) const
{
    const auto layout =
        std::find_if(kLayouts.begin(), kLayouts.end(), [&](const Layout& known) { return known.name == name; });
    if (layout == kLayouts.end()) {
        throw platform::LayoutError("There is no layout named " + std::string(name));
    }
    auto root = std::make_unique<QWidget>();
    layout->setUp(root.get());
    return std::make_shared<QtView>(std::move(root), m_surroundings);
}

std::shared_ptr<platform::Window> QtLayouts::keyWindow() { return keyQtWindow(); }

QWidget* QtLayouts::keyWidget() const
{
    const auto window = keyQtWindow();
    return window ? &window->widget() : nullptr;
}

std::shared_ptr<QtWindow> QtLayouts::keyQtWindow() const
{
    std::shared_ptr<QtWindow> last;
    for (const auto& known : m_windows) {
        const auto window = known.lock();
        if (!window || !window->isVisible()) {
            continue;
        }
        if (window->widget().isActiveWindow()) {
            return window;
        }
        if (!last || window->lastShown() > last->lastShown()) {
            last = window;
        }
    }
    return last;
}

void QtLayouts::closedByPerson()
{
    if (!keyQtWindow()) {
        m_lastClosed();
    }
}

} // namespace vorrano::qt
