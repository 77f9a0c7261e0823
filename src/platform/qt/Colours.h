#pragma once

#include <QColor>

namespace vorrano::qt {

// The colour as it looks where it covers this share of the ground. Opaque.
inline QColor mixed(const QColor& colour, const QColor& ground, float share)
{
    const auto part = [share](float of, float with) { return with + (of - with) * share; };
    return QColor::fromRgbF(part(colour.redF(), ground.redF()), part(colour.greenF(), ground.greenF()),
                            part(colour.blueF(), ground.blueF()));
}

} // namespace vorrano::qt
