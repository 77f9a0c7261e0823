#include "QtProgram.h"

#include "platform/qt/TabWidget.h"

#include <QAccessible>
#include <QIcon>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPixmap>
#include <QWheelEvent>
#include <QtTest/QTest>

#include <gmock/gmock.h>

#include <stdexcept>

namespace vorrano::qt {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kUtilities = 3;

// What one round of the layout posts, the next one handles.
void settle()
{
    for (int round = 0; round < 20; ++round) {
        QCoreApplication::processEvents();
    }
}

// Counts how often all of a widget is painted anew.
class Paintings final : public QObject {
public:
    explicit Paintings(QWidget& painted)
        : m_painted(painted)
    {
        settle();
        painted.installEventFilter(this);
    }

    // Those that the events of now bring.
    int count()
    {
        settle();
        return m_count;
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint &&
            QRegion(m_painted.rect()).subtracted(static_cast<QPaintEvent*>(event)->region()).isEmpty()) {
            ++m_count;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget& m_painted;
    int m_count = 0;
};

class TabView : public support::QtProgram {
protected:
    TabView()
    {
        tabs.onSelect([this] { chosen.push_back(tabs.selectedLabel()); });
    }

    void click(int index) { QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(index).center()); }

    QAccessibleInterface& accessibleTab(int index)
    {
        return *QAccessible::queryAccessibleInterface(&bar)->child(index);
    }

    void pressTabOverTheBus(int index)
    {
        accessibleTab(index).actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }

    std::shared_ptr<platform::Window> window = shown("SetupMenuViewController");
    platform::TabView& tabs = window->view()->tabView("setupTabView");
    TabWidget& widgetOfTabs = widget<TabWidget>(*window->view(), "setupTabView");
    TabBar& bar = widgetOfTabs.bar();
    std::vector<std::string> chosen;
};

TEST_F(TabView, HasFourTabsWithTheirLabels)
{
    EXPECT_EQ(tabs.count(), 4);
    EXPECT_EQ(tabs.selectedIndex(), 0);
    EXPECT_EQ(tabs.selectedLabel(), "Account Information");

    for (int index = 1; index < 4; ++index) {
        click(index);
    }

    EXPECT_THAT(chosen, ElementsAre("Register Vorrano", "Wifi Setup", "Utilities"));
}

TEST_F(TabView, TellsOnceOfAClickAlsoOnTheTabOnScreen)
{
    click(2);
    click(2);
    click(0);

    EXPECT_THAT(chosen, ElementsAre("Wifi Setup", "Wifi Setup", "Account Information"));
}

TEST_F(TabView, TellsOfNoOtherMouseButtonAndNotOfTheWheel)
{
    QTest::mouseClick(&bar, Qt::RightButton, {}, bar.tabRect(0).center());
    QTest::mouseClick(&bar, Qt::MiddleButton, {}, bar.tabRect(2).center());
    const QPointF position = bar.tabRect(0).center();
    QWheelEvent wheel(position, bar.mapToGlobal(position), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&bar, &wheel);

    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_EQ(tabs.selectedIndex(), 0);
}

TEST_F(TabView, TellsOnceOfAChoiceByKey)
{
    bar.setFocus();

    QTest::keyClick(&bar, Qt::Key_Right);
    QTest::keyClick(&widgetOfTabs, Qt::Key_Tab, Qt::ControlModifier);

    EXPECT_THAT(chosen, ElementsAre("Register Vorrano", "Wifi Setup"));
}

TEST_F(TabView, TellsOnceOfAChoiceByMnemonicAlsoOfTheTabOnScreen)
{
    // As a desktop does that puts mnemonics into labels without one.
    bar.setTabText(2, QStringLiteral("&Wifi Setup"));

    for (int times = 0; times < 2; ++times) {
        QTest::keyClick(&frame(*window), Qt::Key_W, Qt::AltModifier);
    }

    EXPECT_THAT(chosen, ElementsAre("Wifi Setup", "Wifi Setup"));
}

TEST_F(TabView, TellsOnceOfAPressOverTheBusAlsoOnTheTabOnScreen)
{
    pressTabOverTheBus(2);
    pressTabOverTheBus(2);
    pressTabOverTheBus(0);

    EXPECT_THAT(chosen, ElementsAre("Wifi Setup", "Wifi Setup", "Account Information"));
}

TEST_F(TabView, IsARowOfNamedTabsOnTheBus)
{
    bar.setTabText(2, QStringLiteral("&Wifi Setup"));
    auto* const row = QAccessible::queryAccessibleInterface(&bar);

    ASSERT_EQ(row->childCount(), 4);
    EXPECT_EQ(row->role(), QAccessible::PageTabList);
    EXPECT_EQ(accessibleTab(2).role(), QAccessible::PageTab);
    EXPECT_EQ(accessibleTab(2).text(QAccessible::Name), QStringLiteral("Wifi Setup"));
    EXPECT_EQ(accessibleTab(2).parent(), row);
    EXPECT_EQ(row->indexOfChild(&accessibleTab(2)), 2);
    EXPECT_TRUE(accessibleTab(0).state().selected);
    EXPECT_FALSE(accessibleTab(2).state().selected);
    EXPECT_EQ(row->childAt(accessibleTab(3).rect().center().x(), accessibleTab(3).rect().center().y()),
              &accessibleTab(3));
    EXPECT_EQ(row->child(4), nullptr);
}

TEST_F(TabView, KeepsTheLayoutsLabelsWhateverTheDesktopPutsIntoTheWidgets)
{
    bar.setTabText(0, QStringLiteral("&Account Information"));

    EXPECT_EQ(tabs.selectedLabel(), "Account Information");
}

TEST_F(TabView, TellsNothingWhenContentIsReplaced)
{
    for (int times = 0; times < 2; ++times) {
        for (int index = 0; index < tabs.count(); ++index) {
            tabs.setView(index, layouts.loadView("RegisterVorranoViewController"));
        }
    }
    runQueue();

    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_EQ(tabs.selectedIndex(), 0);
}

TEST_F(TabView, ShowsTheViewOnItsPageAndLetsThePreviousOneGo)
{
    auto first = layouts.loadView("RegisterVorranoViewController");
    const std::weak_ptr<platform::View> gone = first;
    const QPointer<QWidget> root = &dynamic_cast<QtView&>(*first).root();
    tabs.setView(0, std::move(first));
    EXPECT_TRUE(root->isVisible());

    const auto second = layouts.loadView("WifiSetupViewController");
    tabs.setView(0, second);

    EXPECT_TRUE(gone.expired());
    EXPECT_TRUE(dynamic_cast<QtView&>(*second).root().isVisible());
    EXPECT_TRUE(spinUntil([&] { return root.isNull(); }));
}

TEST_F(TabView, HandlerMayReplaceTheContentOfTheTabThatWasChosen)
{
    tabs.onSelect([this] {
        chosen.push_back(tabs.selectedLabel());
        tabs.setView(tabs.selectedIndex(), layouts.loadView("WifiSetupViewController"));
    });

    click(2);
    click(2);
    pressTabOverTheBus(2);

    EXPECT_EQ(chosen.size(), 3U);
}

TEST_F(TabView, PaintsThePageOnceForAChoice)
{
    tabs.onSelect([this] { tabs.setView(tabs.selectedIndex(), layouts.loadView("UtilitiesViewController")); });
    click(kUtilities);
    click(0);
    Paintings paintings(*widgetOfTabs.widget(kUtilities));

    click(kUtilities);

    EXPECT_EQ(paintings.count(), 1);
}

TEST_F(TabView, PaintsNoPageAnewForALayoutWithinIt)
{
    const auto view = layouts.loadView("UtilitiesViewController");
    tabs.setView(0, view);
    auto& spinner = view->progressIndicator("loginProgressIndicator");
    spinner.setHidden(false);
    Paintings paintings(*widgetOfTabs.widget(0));

    spinner.setHidden(true);

    EXPECT_EQ(paintings.count(), 0);
}

TEST_F(TabView, GivesTheRowTheRoomThatItNeeds)
{
    QPixmap tall(16, 64);
    tall.fill();
    bar.setIconSize(tall.size());
    spinUntil([&] { return bar.height() == bar.sizeHint().height(); });
    const int before = bar.height();

    bar.setTabIcon(0, QIcon(tall));

    EXPECT_TRUE(spinUntil([&] { return bar.height() > before && bar.height() == bar.sizeHint().height(); }));
    EXPECT_GE(widgetOfTabs.currentWidget()->mapTo(&widgetOfTabs, QPoint()).y(), bar.geometry().bottom());
}

TEST_F(TabView, LetsTheWindowGrowWithAPage)
{
    const auto view = layouts.loadView("RegisterVorranoViewController");
    tabs.setView(0, view);
    settle();
    const int before = frame(*window).minimumHeight();

    widget<QLineEdit>(*view, "vorranoName").setMinimumHeight(100);

    EXPECT_TRUE(spinUntil([&] { return frame(*window).minimumHeight() > before; }));
}

TEST_F(TabView, ViewThatIsStillHeldOutlivesTheWindow)
{
    const auto view = layouts.loadView("RegisterVorranoViewController");
    tabs.setView(0, view);

    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    runQueue();

    view->textField("vorranoName").setText("Kitchen");
    EXPECT_EQ(view->textField("vorranoName").text(), "Kitchen");
}

TEST_F(TabView, PutsAChoiceBackWhileTheGateIsShut)
{
    auto shut = gate.shut();

    click(1);
    click(0);
    pressTabOverTheBus(3);
    pressTabOverTheBus(0);
    bar.setCurrentIndex(2);

    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_EQ(tabs.selectedIndex(), 0);
    EXPECT_EQ(bar.currentIndex(), 0);
    shut.reset();
    pressTabOverTheBus(3);
    EXPECT_THAT(chosen, ElementsAre("Utilities"));
}

TEST_F(TabView, HandlerThatThrowsIsWrittenToTheLog)
{
    tabs.onSelect([] { throw std::runtime_error("broken"); });

    click(1);

    EXPECT_THAT(log.lines(), ElementsAre("Uncaught exception: broken"));
}

} // namespace
} // namespace vorrano::qt
