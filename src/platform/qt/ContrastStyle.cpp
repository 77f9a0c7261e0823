#include "platform/qt/ContrastStyle.h"

#include "platform/qt/Colours.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <array>
#include <cmath>

namespace vorrano::qt {

namespace {

// The contrast of two colours is 1 when they are the same, and 21 between black and white.
constexpr double kLegible = 1.5;
constexpr double kAlike = 1.05;

struct Derived {
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
    // The text that it is a paler form of.
    QPalette::ColorRole ordinary;
    QPalette::ColorRole ground;
};

constexpr std::array kTexts{
    Derived{QPalette::Disabled, QPalette::WindowText, QPalette::WindowText, QPalette::Window},
    Derived{QPalette::Disabled, QPalette::Text, QPalette::Text, QPalette::Base},
    Derived{QPalette::Disabled, QPalette::ButtonText, QPalette::ButtonText, QPalette::Button},
    Derived{QPalette::Active, QPalette::PlaceholderText, QPalette::Text, QPalette::Base},
    Derived{QPalette::Inactive, QPalette::PlaceholderText, QPalette::Text, QPalette::Base},
    Derived{QPalette::Disabled, QPalette::PlaceholderText, QPalette::Text, QPalette::Base},
};

// What is seen of light, as the guidelines for accessible web pages measure it.
double luminance(const QColor& colour)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

bool leavesAllToFrames(const QPalette& palette)
{
    const QColor window = palette.color(QPalette::Window);
    return contrast(window, palette.color(QPalette::Base)) < kAlike &&
           contrast(window, palette.color(QPalette::Button)) < kAlike;
}

bool isDefaultButton(const QStyleOption& option)
{
    const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    return button != nullptr && button->features.testFlag(QStyleOptionButton::DefaultButton);
}

void drawFrame(const QStyleOption& option, QStyle::State state, const QRect& place, QPainter& painter)
{
    if (!leavesAllToFrames(option.palette)) {
        return;
    }
    const bool focused = state.testFlag(QStyle::State_HasFocus);
    const bool thick = focused || state.testFlag(QStyle::State_Selected);
    const auto role = focused || isDefaultButton(option) ? QPalette::Highlight : QPalette::WindowText;
    const int thickness = thick ? 2 : 1;
    const qreal inset = thickness / 2.0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(option.palette.color(role), thickness));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(place).adjusted(inset, inset, -inset, -inset), 2, 2);
    painter.restore();
}

// A frame around others, of which one may have the focus.
void drawOuterFrame(const QStyleOption& option, const QRect& place, QPainter& painter)
{
    drawFrame(option, option.state & ~QStyle::State_HasFocus, place, painter);
}

} // namespace

void ContrastStyle::polish(QPalette& palette)
{
    QProxyStyle::polish(palette);
    for (const auto& text : kTexts) {
        const QColor ground = palette.color(text.group, text.ground);
        const QColor derived = palette.color(text.group, text.role);
        if (contrast(mixed(derived, ground, derived.alphaF()), ground) < kLegible) {
            palette.setColor(text.group, text.role,
                             mixed(palette.color(QPalette::Active, text.ordinary), ground, 0.5F));
        }
    }
}

void ContrastStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    switch (element) {
    case PE_Frame:
    case PE_FrameLineEdit:
    case PE_IndicatorCheckBox:
    case PE_PanelButtonCommand:
    case PE_PanelMenu:
        drawFrame(*option, option->state, option->rect, *painter);
        break;
    case PE_FrameTabWidget:
        drawOuterFrame(*option, option->rect, *painter);
        break;
    default:
        break;
    }
}

void ContrastStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    if (element == CE_TabBarTabShape || element == CE_ProgressBarGroove) {
        drawFrame(*option, option->state, option->rect, *painter);
    }
}

void ContrastStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                       const QWidget* widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ScrollBar) {
        drawFrame(*option, option->state, proxy()->subControlRect(control, option, SC_ScrollBarSlider, widget),
                  *painter);
    } else if (control == CC_GroupBox) {
        drawOuterFrame(*option, proxy()->subControlRect(control, option, SC_GroupBoxContents, widget), *painter);
    }
}

} // namespace vorrano::qt
