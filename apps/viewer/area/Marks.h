// Lines over a picture that are seen on any colour.
#pragma once

#include <QPainter>
#include <QPainterPath>
#include <QRectF>

#include "picture/Geometry.h"

namespace veloxa::viewer {

// The pixel that holds a place of the picture.
struct PixelAt {
    int x;
    int y;
};
PixelAt pixel_at(Point picture);

QPointF to_qt(Point point);
// The box's pixels in the area.
QRectF to_area(const Geometry& geometry, const Zo::Image::Box& box);

// In the colour, with a dark seam on either side; `ratio` device pixels wide.
void draw_line(QPainter& painter, const QPainterPath& path, const QColor& colour, double ratio);
void draw_box(QPainter& painter, const QRectF& box, const QColor& colour, double ratio);

}  // namespace veloxa::viewer
