#include "platform/qt/ProgramIcon.h"

#include <QImageReader>

namespace vorrano::qt {

QPixmap programIcon(int side)
{
    QImageReader reader(QStringLiteral(":/icons/vorrano-setup-%1.png").arg(side), "png");
    reader.setAutoDetectImageFormat(false);
    return QPixmap::fromImageReader(&reader);
}

} // namespace vorrano::qt
