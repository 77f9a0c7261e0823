#pragma once

#include "platform/qt/Colours.h"

#include <QPainter>
#include <QPalette>
#include <QWidget>

namespace vorrano::qt {

// Tells a window apart from the one behind it where no window manager draws a frame. For its paint event.
inline void outlineUnlessFramed(QWidget& window)
{
    if (window.frameGeometry() == window.geometry()) {
        QPainter painter(&window);
        const QPalette& palette = window.palette();
        // A transparent colour would do as well; but Qt blends a long line of one on threads, which it starts for that.
        painter.setPen(mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.5F));
        painter.drawRect(window.rect().adjusted(0, 0, -1, -1));
    }
}

} // namespace vorrano::qt
