#include "platform/qt/ProgramIcon.h"

#include <QImageReader>

#include <algorithm>
#include <array>

namespace vorrano::qt {

namespace {

constexpr std::array kSides{32, 64, 128};

} // namespace

QPixmap programIcon(int side)
{
    const auto* const found = std::lower_bound(kSides.begin(), kSides.end(), side);
    const int chosen = found == kSides.end() ? kSides.back() : *found;
    QImageReader reader(QStringLiteral(":/icons/vorrano-setup-%1.png").arg(chosen), "png");
    reader.setAutoDetectImageFormat(false);
    return QPixmap::fromImageReader(&reader);
}

} // namespace vorrano::qt
