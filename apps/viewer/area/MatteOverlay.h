// Drawn mattes over a picture: a wide band for the feather, the line, the points.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <optional>

#include "picture/Geometry.h"
#include "shot/mattes/DrawnMatte.h"

namespace veloxa::viewer {

QColor colour_of(DrawnMatte::Kind kind);
QPainterPath outline_of(const DrawnMatte& matte, const Geometry& geometry, bool closed);

struct MatteLook {
    bool chosen = false;
    bool closed = true;
    std::optional<std::size_t> point;  // the chosen one
};
void draw_matte(QPainter& painter, const DrawnMatte& matte, const MatteLook& look, const Geometry& geometry,
                double ratio);

}  // namespace veloxa::viewer
