#include "platform/qt/QtLayouts.h"

#include "platform/qt/ProgramIcon.h"
#include "platform/qt/QtAccessibility.h"
#include "platform/qt/ScreenArea.h"

#include "ui_AccountInfoViewController.h"
#include "ui_EULAWindowViewController.h"
#include "ui_LoginViewController.h"
#include "ui_RegisterVorranoViewController.h"
#include "ui_SetupMenuViewController.h"
#include "ui_UtilitiesViewController.h"
#include "ui_WifiSetupViewController.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>

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

// How much larger than other text a heading is.
constexpr double kHeadingSize = 1.5;

// How much of what is typed a field shows, however small the window is.
constexpr int kLeastCharacters = 10;

constexpr std::array kLayouts{
    Layout{"LoginViewController", setUp<Ui::LoginViewController>},
    Layout{"EULAWindowViewController", setUp<Ui::EULAWindowViewController>},
    Layout{"SetupMenuViewController", setUp<Ui::SetupMenuViewController>},
    Layout{"AccountInfoViewController", setUp<Ui::AccountInfoViewController>},
    Layout{"RegisterVorranoViewController", setUp<Ui::RegisterVorranoViewController>},
    Layout{"WifiSetupViewController", setUp<Ui::WifiSetupViewController>},
    Layout{"UtilitiesViewController", setUp<Ui::UtilitiesViewController>},
};

const Layout& layoutNamed(std::string_view name)
{
    const auto* const layout =
        std::find_if(kLayouts.begin(), kLayouts.end(), [&](const Layout& known) { return known.name == name; });
    if (layout == kLayouts.end()) {
        throw platform::LayoutError("There is no layout named " + std::string(name));
    }
    return *layout;
}

// What a layout says relative to the person's font, as it cannot name that font's size.
void adaptToFont(const QWidget& root)
{
    for (auto* const widget : root.findChildren<QWidget*>()) {
        if (widget->property("heading").toBool()) {
            QFont font = widget->font();
            font.setPointSizeF(font.pointSizeF() * kHeadingSize);
            font.setBold(true);
            widget->setFont(font);
        }
        // Qt's own least width of a field is one character.
        if (qobject_cast<QLineEdit*>(widget) != nullptr) {
            widget->setMinimumWidth(widget->fontMetrics().horizontalAdvance(u'0') * kLeastCharacters);
        }
        if (widget->property("square").toBool()) {
            widget->setFixedWidth(widget->sizeHint().height());
        }
    }
}

void showProgramIcon(const QWidget& root)
{
    for (auto* const label : root.findChildren<QLabel*>()) {
        if (label->property("programIcon").toBool()) {
            // The label makes it as small as it is: large enough for a dense display, too.
            label->setPixmap(programIcon(128));
        }
    }
}

// So that nothing around them moves when they appear.
void keepPlaces(const QWidget& root)
{
    for (auto* const widget : root.findChildren<QWidget*>()) {
        if (widget->property("keepsPlace").toBool()) {
            QSizePolicy policy = widget->sizePolicy();
            policy.setRetainSizeWhenHidden(true);
            widget->setSizePolicy(policy);
        }
    }
}

// The window begins as large as the largest of the screens that its pages will show, so that it keeps its size when
// another one is chosen.
void makeRoomForPages(QWidget& root)
{
    QWidget* anyPage = nullptr;
    QSize largest;
    for (auto* const page : root.findChildren<QWidget*>()) {
        const QString shows = page->property("shows").toString();
        if (shows.isEmpty()) {
            continue;
        }
        QWidget screen;
        layoutNamed(shows.toStdString()).setUp(&screen);
        adaptToFont(screen);
        const int width = screen.sizeHint().width();
        largest = largest.expandedTo({width, heightNeeded(screen, width)});
        anyPage = page;
    }
    if (anyPage != nullptr) {
        // What is around the pages is added by asking what the window needs with such a page.
        anyPage->setMinimumSize(largest);
        root.resize(root.size().expandedTo(root.minimumSizeHint()));
        anyPage->setMinimumSize(0, 0);
    }
}

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
    auto root = std::make_unique<QWidget>();
    layoutNamed(name).setUp(root.get());
    adaptToFont(*root);
    showProgramIcon(*root);
    keepPlaces(*root);
    makeRoomForPages(*root);
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
