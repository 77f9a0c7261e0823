#pragma once

#include <QPixmap>

namespace vorrano::qt {

// The program's icon, as the smallest of its pictures that is at least `side` pixels wide, or the largest.
//
// A picture that is read by its file's name has Qt load every plug-in for pictures that the computer has, as each might
// know what is in the file. This one is a PNG, which Qt reads without any.
QPixmap programIcon(int side);

} // namespace vorrano::qt
