#pragma once

#include <QPixmap>

namespace vorrano::qt {

// The program's icon, `side` pixels wide: 32, 64 or 128.
//
// When a picture is read by its file's name alone, Qt loads all image plug-ins that are installed, and asks each
// whether it can read the file. This one is said to be a PNG, which Qt reads without a plug-in.
QPixmap programIcon(int side);

} // namespace vorrano::qt
