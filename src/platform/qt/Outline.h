#pragma once

#include <QPainter>
#include <QWidget>

namespace vorrano::qt {

// Tells a window apart from the one behind it where no window manager draws a frame. For its paint event.
inline void outlineUnlessFramed(QWidget& window)
{
    if (window.frameGeometry() == window.geometry()) {
        QPainter painter(&window);
        QColor colour = window.palette().color(QPalette::WindowText);
        colour.setAlphaF(0.5F);
        painter.setPen(colour);
        painter.drawRect(window.rect().adjusted(0, 0, -1, -1));
    }
}

} // namespace vorrano::qt
