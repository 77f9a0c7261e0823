#include "QtProgram.h"

#include "platform/qt/ContrastStyle.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPixmapCache>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTextBrowser>

#include <memory>
#include <ostream>

namespace vorrano::qt {
namespace {

constexpr auto kGroups = {QPalette::Active, QPalette::Inactive, QPalette::Disabled};
constexpr QSize kSize{160, 80};

// A high contrast palette as Qt 6.4 derives it from the desktop's colours: what the desktop does not name is as black
// as the rest, or black that one sees through.
QPalette blackPalette()
{
    QPalette palette(Qt::black);
    for (const auto group : kGroups) {
        for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button, QPalette::Light, QPalette::Midlight,
                                QPalette::Mid, QPalette::Dark, QPalette::Shadow}) {
            palette.setColor(group, role, Qt::black);
        }
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            palette.setColor(group, role, group == QPalette::Disabled ? Qt::black : Qt::white);
        }
        palette.setColor(group, QPalette::PlaceholderText, QColor(0, 0, 0, 128));
        palette.setColor(group, QPalette::Highlight, Qt::yellow);
    }
    return palette;
}

struct Sample {
    const char* name;
    std::function<std::unique_ptr<QWidget>()> make;
};

void PrintTo(const Sample& sample, std::ostream* out) { *out << sample.name; }

template <class Widget>
Sample sample(const char* name)
{
    return {name, [] { return std::make_unique<Widget>(); }};
}

std::unique_ptr<QWidget> framedLabel()
{
    auto label = std::make_unique<QLabel>();
    label->setFrameShape(QFrame::StyledPanel);
    return label;
}

std::unique_ptr<QWidget> twoTabs()
{
    auto tabs = std::make_unique<QTabWidget>();
    tabs->addTab(new QWidget, QString());
    tabs->addTab(new QWidget, QString());
    return tabs;
}

std::unique_ptr<QWidget> menuOfOne()
{
    auto menu = std::make_unique<QMenu>();
    menu->addAction(QString());
    return menu;
}

std::unique_ptr<QWidget> scrollBar()
{
    auto bar = std::make_unique<QScrollBar>(Qt::Horizontal);
    bar->setRange(0, 1);
    return bar;
}

class Drawing : public support::QtProgram, public ::testing::WithParamInterface<Sample> {
protected:
    // The widget as a style draws it, with that palette.
    static QImage drawn(QWidget& widget, QStyle& style, const QPalette& palette)
    {
        for (auto* const part : widget.findChildren<QWidget*>()) {
            part->setStyle(&style);
        }
        widget.setStyle(&style);
        widget.setPalette(palette);
        widget.resize(kSize);
        // A style keeps what it has drawn there, whatever style is drawn through it.
        QPixmapCache::clear();
        return widget.grab().toImage();
    }

    template <class Matches>
    static int count(const QImage& image, Matches matches)
    {
        int found = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                found += matches(image.pixelColor(x, y)) ? 1 : 0;
            }
        }
        return found;
    }

    static int bright(const QImage& image)
    {
        return count(image, [](const QColor& colour) { return qGray(colour.rgb()) > 160; });
    }

    static int highlighted(const QImage& image)
    {
        return count(image, [](const QColor& colour) { return colour.green() > 160 && colour.blue() < 80; });
    }

    ContrastStyle style;
    const std::unique_ptr<QStyle> plain{QStyleFactory::create(QStringLiteral("fusion"))};
};

TEST_P(Drawing, AFrameIsSeenWhereAllIsBlack)
{
    const auto widget = GetParam().make();

    EXPECT_GT(bright(drawn(*widget, style, blackPalette())), bright(drawn(*widget, *plain, blackPalette())) + 20);
}

TEST_P(Drawing, IsTheDesktopsOwnInAnOrdinaryPalette)
{
    const auto widget = GetParam().make();
    const QPalette palette = plain->standardPalette();

    EXPECT_EQ(drawn(*widget, style, palette), drawn(*widget, *plain, palette));
}

INSTANTIATE_TEST_SUITE_P(Samples, Drawing,
                         ::testing::Values(sample<QLineEdit>("Field"), sample<QPushButton>("Button"),
                                           sample<QCheckBox>("CheckBox"), sample<QComboBox>("PickList"),
                                           sample<QGroupBox>("Box"), sample<QTextBrowser>("Text"),
                                           sample<QProgressBar>("Progress"), Sample{"Label", framedLabel},
                                           Sample{"Tabs", twoTabs}, Sample{"Menu", menuOfOne},
                                           Sample{"ScrollBar", scrollBar}),
                         [](const auto& test) { return std::string(test.param.name); });

class Contrast : public Drawing {};

TEST_F(Contrast, WhatHasTheFocusStandsOut)
{
    const auto window = shown("LoginViewController");
    auto& field = widget<QLineEdit>(*window->view(), "accountId");
    ASSERT_TRUE(field.hasFocus());

    EXPECT_GT(highlighted(drawn(field, style, blackPalette())), 2 * kSize.width());
    field.clearFocus();
    EXPECT_EQ(highlighted(drawn(field, style, blackPalette())), 0);
    field.setStyle(nullptr);
}

TEST_F(Contrast, TheFrameAroundTheTabWithTheFocusDoesNotStandOut)
{
    const auto window = shown(support::kSetup);
    auto& tabs = *frame(*window).findChild<QTabWidget*>();
    tabs.tabBar()->setFocus();
    ASSERT_TRUE(tabs.tabBar()->hasFocus());

    const QImage picture = drawn(tabs, style, blackPalette());

    const QRect lowerHalf(0, picture.height() / 2, picture.width(), picture.height() / 2);
    EXPECT_GT(highlighted(picture), 0);
    EXPECT_EQ(highlighted(picture.copy(lowerHalf)), 0);
    for (auto* const part : frame(*window).findChildren<QWidget*>()) {
        part->setStyle(nullptr);
    }
}

TEST_F(Contrast, TheDefaultButtonStandsOut)
{
    QPushButton button;
    button.setDefault(true);

    EXPECT_GT(highlighted(drawn(button, style, blackPalette())), kSize.width());
}

TEST_F(Contrast, TheChosenTabStandsOut)
{
    QTabBar bar;
    bar.setDrawBase(false);
    bar.addTab(QStringLiteral(" "));
    bar.addTab(QStringLiteral(" "));
    const QImage picture = drawn(bar, style, blackPalette());

    EXPECT_GT(bright(picture.copy(bar.tabRect(0))), bright(picture.copy(bar.tabRect(1))) * 3 / 2);
}

TEST_F(Contrast, ATextThatCannotBeReadGetsAPalerFormOfTheOrdinaryOne)
{
    QPalette palette = blackPalette();

    QApplication::style()->polish(palette);

    const auto grey = [&](QPalette::ColorGroup group, QPalette::ColorRole role) {
        return qGray(palette.color(group, role).rgb());
    };
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        EXPECT_NEAR(grey(QPalette::Disabled, role), 128, 1) << role;
        EXPECT_EQ(grey(QPalette::Active, role), 255) << role;
    }
    for (const auto group : kGroups) {
        EXPECT_NEAR(grey(group, QPalette::PlaceholderText), 128, 1) << group;
        EXPECT_EQ(palette.color(group, QPalette::PlaceholderText).alpha(), 255) << group;
    }
}

TEST_F(Contrast, ATextThatCanBeReadKeepsItsColour)
{
    QPalette palette = plain->standardPalette();

    style.polish(palette);

    EXPECT_EQ(palette, plain->standardPalette());
}

} // namespace
} // namespace vorrano::qt
