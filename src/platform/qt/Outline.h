#pragma once

#include <QPainter>
#include <QWidget>

namespace vorrano::qt {

// Tells a window apart from the one behind it where no window manager draws a frame. For its paint event.
inline void outlineUnlessFramed(QWidget& window)
{
    if (window.frameGeometry() == window.geometry()) {
        QPainter painter(&window);
        painter.setPen(window.palette().color(QPalette::Dark));
        painter.drawRect(window.rect().adjusted(0, 0, -1, -1));
    }
}

} // namespace vorrano::qt
