#include "area/Marks.h"

#include <algorithm>
#include <cmath>

namespace veloxa::viewer {

PixelAt pixel_at(Point picture) {
    static constexpr double kFar = 1 << 28;
    const auto whole = [](double v) { return static_cast<int>(std::clamp(std::floor(v), -kFar, kFar)); };
    return {whole(picture.x), whole(picture.y)};
}

QPointF to_qt(Point point) {
    return {point.x, point.y};
}

QRectF to_area(const Geometry& geometry, const Zo::Image::Box& box) {
    const Point top_left = geometry.to_area({static_cast<double>(box.x), static_cast<double>(box.t)});
    const Point bottom_right = geometry.to_area({static_cast<double>(box.r), static_cast<double>(box.y)});
    return {to_qt(top_left), to_qt(bottom_right)};
}

void draw_line(QPainter& painter, const QPainterPath& path, const QColor& colour, double ratio) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0, 0, 0, 150), 3.0 * ratio));
    painter.drawPath(path);
    painter.setPen(QPen(colour, ratio));
    painter.drawPath(path);
}

void draw_box(QPainter& painter, const QRectF& box, const QColor& colour, double ratio) {
    QPainterPath path;
    path.addRect(box);
    draw_line(painter, path, colour, ratio);
}

}  // namespace veloxa::viewer
