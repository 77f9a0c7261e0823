#pragma once

#include <QPalette>
#include <QProxyStyle>

namespace vorrano::qt {

// The desktop's style (or the one that -style names), drawn so that it can be seen in every palette:
//
// - Qt 6.4 reads some of the desktop's colours and derives the others. What it derives for dark and for black palettes
//   can be as dark as its background: the text of disabled controls, and the hint in an empty field. Such a text gets
//   the colour between the ordinary text and the background.
// - A high contrast palette has one colour for windows, fields and buttons, so that only frames tell them apart; but
//   styles derive their frames from that colour, and nothing is darker than black. In such a palette frames have the
//   colour of the text, and the frame of what has the focus is thicker and has the colour of a selection.
class ContrastStyle final : public QProxyStyle {
public:
    using QProxyStyle::polish;
    void polish(QPalette& palette) override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};

} // namespace vorrano::qt
