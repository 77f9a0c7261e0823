#include "QtProgram.h"

#include "platform/qt/ScreenArea.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTabBar>
#include <QWindow>
#include <QtTest/QTest>

#include <array>
#include <map>
#include <string_view>
#include <tuple>

namespace vorrano::qt {
namespace {

using support::kSetup;

constexpr QSize kScreen{1024, 600};
constexpr std::array kTabs{"AccountInfoViewController", "RegisterVorranoViewController", "WifiSetupViewController",
                           "UtilitiesViewController"};

// How large the person's font is, in percent, and the direction that the person reads in.
using Taste = std::tuple<int, Qt::LayoutDirection>;

// The smallest display that the program is meant for.
class Looks : public support::QtProgram, public ::testing::WithParamInterface<Taste> {
protected:
    Looks()
    {
        QFont font = m_font;
        font.setPointSizeF(font.pointSizeF() * std::get<0>(GetParam()) / 100.0);
        QApplication::setFont(font);
        QApplication::setLayoutDirection(std::get<1>(GetParam()));
    }
    ~Looks() override
    {
        QApplication::setFont(m_font);
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }

    static bool isNormal() { return std::get<0>(GetParam()) == 100; }

    static void settle()
    {
        for (int rounds = 0; rounds < 5; ++rounds) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    }

    static std::string nameOf(const QWidget& widget)
    {
        return widget.objectName().toStdString() + " " + widget.metaObject()->className();
    }

    static QSize needOf(const QWidget& widget)
    {
        const QSize hint = widget.minimumSizeHint();
        if (widget.hasHeightForWidth()) {
            return {hint.width(), widget.heightForWidth(widget.width())};
        }
        if (qobject_cast<const QLineEdit*>(&widget) != nullptr) {
            return {widget.fontMetrics().horizontalAdvance(u'0') * 8, hint.height()};
        }
        // Its text is one character.
        return widget.property("square").toBool() ? QSize(hint.height(), hint.height()) : hint;
    }

    static bool showsText(const QWidget& widget)
    {
        const auto* const label = qobject_cast<const QLabel*>(&widget);
        return (label != nullptr && !label->hasScaledContents()) ||
               qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
               qobject_cast<const QLineEdit*>(&widget) != nullptr ||
               qobject_cast<const QComboBox*>(&widget) != nullptr || qobject_cast<const QGroupBox*>(&widget) != nullptr;
    }

    // Everything has the room that it asks for, inside of what it is in; only the content of an area may be larger than
    // what is seen of it.
    static void expectNothingCutOff(const QWidget& window)
    {
        EXPECT_LE(window.width(), kScreen.width());
        EXPECT_LE(window.height(), kScreen.height());
        for (const auto* const widget : window.findChildren<QWidget*>()) {
            if (!widget->isVisible() || !showsText(*widget) || qobject_cast<QTabBar*>(widget->parentWidget())) {
                continue;
            }
            const QSize need = needOf(*widget);
            EXPECT_GE(widget->width(), need.width()) << nameOf(*widget);
            EXPECT_GE(widget->height(), need.height()) << nameOf(*widget);
            for (const auto* inner = widget; !inner->isWindow() && ScreenArea::around(*inner) == nullptr;
                 inner = inner->parentWidget()) {
                EXPECT_TRUE(inner->parentWidget()->rect().contains(inner->geometry())) << nameOf(*inner);
            }
        }
    }

    static void expectNoScrolling(const QWidget& window)
    {
        for (const auto* const area : window.findChildren<ScreenArea*>()) {
            if (area->isVisible()) {
                EXPECT_EQ(area->verticalScrollBar()->maximum(), 0) << nameOf(*area->widget());
                EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0) << nameOf(*area->widget());
            }
        }
    }

private:
    const QFont m_font = QApplication::font();
};

TEST_P(Looks, NothingIsCutOffTheWindowsWithoutTabs)
{
    for (const auto* const layout : {"LoginViewController", "EULAWindowViewController"}) {
        const auto window = shown(layout);
        settle();

        expectNothingCutOff(frame(*window));
        if (isNormal()) {
            expectNoScrolling(frame(*window));
        }
    }
}

TEST_P(Looks, NothingIsCutOffAnyTab)
{
    const auto setup = shown(kSetup);
    auto& bar = *frame(*setup).findChild<QTabBar*>();
    for (int index = 0; index < bar.count(); ++index) {
        bar.setCurrentIndex(index);
        setup->view()->tabView("setupTabView").setView(index, layouts.loadView(kTabs.at(static_cast<size_t>(index))));
        settle();

        expectNothingCutOff(frame(*setup));
        if (isNormal()) {
            expectNoScrolling(frame(*setup));
        }
    }
}

TEST_P(Looks, TheWindowKeepsItsSizeWhicheverTabIsChosen)
{
    const auto setup = shown(kSetup);
    settle();
    const QSize size = frame(*setup).size();
    auto& bar = *frame(*setup).findChild<QTabBar*>();

    for (int index = 0; index < bar.count(); ++index) {
        bar.setCurrentIndex(index);
        setup->view()->tabView("setupTabView").setView(index, layouts.loadView(kTabs.at(static_cast<size_t>(index))));
        settle();

        EXPECT_EQ(frame(*setup).width(), size.width()) << index;
        if (isNormal()) {
            EXPECT_EQ(frame(*setup).height(), size.height()) << index;
        }
    }
}

TEST_P(Looks, NothingMovesWhenAnUploadShowsItsProgress)
{
    const auto setup = shown(kSetup);
    const auto view = layouts.loadView("UtilitiesViewController");
    view->progressBar("uploadProgressBar").setHidden(true);
    view->label("uploadProgressLabel").setHidden(true);
    view->label("connectionNoticeLabel").setHidden(true);
    setup->view()->tabView("setupTabView").setView(0, view);
    settle();
    const auto places = [&view] {
        std::map<std::string, QRect> found;
        for (const auto* const widget : dynamic_cast<QtView&>(*view).root().findChildren<QWidget*>()) {
            if (widget->isVisible() && !widget->objectName().startsWith(QLatin1String("upload"))) {
                found.insert_or_assign(nameOf(*widget), widget->geometry());
            }
        }
        return found;
    };
    const auto before = places();

    view->progressBar("uploadProgressBar").setHidden(false);
    view->label("uploadProgressLabel").setText("Line 12,345 of 23,456, about 1 h 55 min left");
    view->label("uploadProgressLabel").setHidden(false);
    settle();

    EXPECT_EQ(places(), before);
}

TEST_P(Looks, NothingIsCutOffAnAlert)
{
    const auto window = shown("LoginViewController");
    whileUp([](QDialog& box) {
        settle();
        expectNothingCutOff(box);
        for (auto* const button : box.findChildren<QPushButton*>()) {
            button->click();
        }
    });

    alerts.runModal({"You must have downloaded the update file(vorrano.hex) from a downloads page with a long address "
                     "before proceeding. Do you want to proceed with updating the Vorrano Firmware?",
                     {"Yes"},
                     "SSID cannot have a '$' sign. You will need to change your routers Wifi SSID to not include the "
                     "'$' sign",
                     platform::AlertStyle::Informational});
}

TEST_P(Looks, AHeadingIsLargerThanOtherTextAtAnyFont)
{
    const auto window = shown("LoginViewController");

    EXPECT_GT(widget<QLabel>(*window->view(), "label1").font().pointSizeF(), QApplication::font().pointSizeF() * 1.2);
}

TEST_P(Looks, ALabelStandsWhereReadingBegins)
{
    const auto window = shown("LoginViewController");
    settle();
    const int label = widget<QLabel>(*window->view(), "label5").x();
    const int field = widget<QLineEdit>(*window->view(), "accountId").x();

    EXPECT_EQ(label < field, std::get<1>(GetParam()) == Qt::LeftToRight);
}

TEST_P(Looks, WhatGetsTheFocusIsScrolledIntoSight)
{
    ScreenArea area;
    const auto view = layouts.loadView("LoginViewController");
    auto& button = widget<QPushButton>(*view, "loginButton");
    area.showContent(dynamic_cast<QtView&>(*view).root());
    area.resize(200, 60);
    area.show();
    ASSERT_TRUE(spinUntil([&] { return area.isActiveWindow(); }));
    ASSERT_TRUE(button.visibleRegion().isEmpty());

    button.setFocus();
    settle();

    EXPECT_FALSE(button.visibleRegion().isEmpty());
}

TEST_P(Looks, AWindowCanBeMadeAsSmallAsTheDisplayThatItIsMovedTo)
{
    const auto window = shown("LoginViewController");
    settle();
    auto& moved = frame(*window);
    auto* const tiny = QGuiApplication::screens().back();
    ASSERT_GT(moved.minimumHeight(), tiny->availableSize().height());

    moved.windowHandle()->setScreen(tiny);
    settle();

    EXPECT_LE(moved.minimumWidth(), tiny->availableSize().width());
    EXPECT_LE(moved.minimumHeight(), tiny->availableSize().height());
}

// What moved under the pointer would not be clicked.
TEST_P(Looks, WhatIsPressedWithThePointerStaysInItsPlace)
{
    ScreenArea area;
    const auto view = layouts.loadView("UtilitiesViewController");
    auto& button = widget<QPushButton>(*view, "buttonSetThrottle");
    int presses = 0;
    view->button("buttonSetThrottle").onPress([&](platform::Control&) { ++presses; });
    area.showContent(dynamic_cast<QtView&>(*view).root());
    area.resize(area.sizeHint().width() + 40, 160);
    area.show();
    ASSERT_TRUE(spinUntil([&] { return area.isActiveWindow(); }));
    // A few of its pixels are in sight, at the lower edge.
    const int top = button.mapTo(area.widget(), QPoint()).y();
    area.verticalScrollBar()->setValue(top - area.viewport()->height() + 6);
    settle();
    const QPoint seen = button.visibleRegion().boundingRect().center();
    const QPoint place = button.mapTo(&area, seen);

    QTest::mouseClick(area.windowHandle(), Qt::LeftButton, {}, place);
    settle();

    EXPECT_EQ(presses, 1);
}

// As when a minimised window comes back.
TEST_P(Looks, ALineThatWasThereBeforeDoesNotMoveThePage)
{
    ScreenArea area;
    const auto view = layouts.loadView("UtilitiesViewController");
    auto& label = widget<QLabel>(*view, "connectionNoticeLabel");
    view->label("connectionNoticeLabel").setText("Line 1");
    area.showContent(dynamic_cast<QtView&>(*view).root());
    area.resize(400, 120);
    area.show();
    settle();
    area.verticalScrollBar()->setValue(area.verticalScrollBar()->maximum());

    QShowEvent back;
    QSpontaneKeyEvent::setSpontaneous(&back);
    qApp->notify(&label, &back);
    settle();

    EXPECT_EQ(area.verticalScrollBar()->value(), area.verticalScrollBar()->maximum());
}

TEST_P(Looks, ALineThatIsReadOutWhenItAppearsIsScrolledIntoSight)
{
    for (const auto* const name : {"uploadProgressLabel", "connectionNoticeLabel"}) {
        ScreenArea area;
        const auto view = layouts.loadView("UtilitiesViewController");
        auto& label = widget<QLabel>(*view, name);
        view->label(name).setHidden(true);
        area.showContent(dynamic_cast<QtView&>(*view).root());
        area.resize(400, 120);
        area.show();
        settle();
        // Away from the line: the one about the port is at the top.
        const bool isLow = std::string_view(name) == "uploadProgressLabel";
        area.verticalScrollBar()->setValue(isLow ? 0 : area.verticalScrollBar()->maximum());

        view->label(name).setText("Line 1");
        view->label(name).setHidden(false);
        settle();

        const int beginning = std::get<1>(GetParam()) == Qt::LeftToRight ? 0 : label.width() - 1;
        EXPECT_TRUE(label.visibleRegion().contains(QPoint(beginning, label.height() / 2))) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Tastes, Looks,
                         ::testing::Combine(::testing::Values(100, 150, 200),
                                            ::testing::Values(Qt::LeftToRight, Qt::RightToLeft)),
                         [](const auto& test) {
                             return "Font" + std::to_string(std::get<0>(test.param)) +
                                    (std::get<1>(test.param) == Qt::LeftToRight ? "LeftToRight" : "RightToLeft");
                         });

} // namespace
} // namespace vorrano::qt
