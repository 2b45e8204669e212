#include "area/MatteOverlay.h"

#include "area/Marks.h"

namespace veloxa::viewer {

namespace {

constexpr double kPointSide = 7.0;

QPainterPath path_through(const DrawnMatte& matte, bool closed) {
    QPainterPath path;
    for (std::size_t n = 0; n < matte.points.size(); ++n) {
        const QPointF point(matte.points[n][0], matte.points[n][1]);
        if (n == 0) {
            path.moveTo(point);
        } else {
            path.lineTo(point);
        }
    }
    if (closed) path.closeSubpath();
    return path;
}

QTransform to_area(const Geometry& geometry) {
    const Point origin = geometry.to_area({0.0, 0.0});
    return {geometry.zoom * geometry.aspect, 0.0, 0.0, -geometry.zoom, origin.x, origin.y};
}

// In pixels of the picture, which may be wider than high.
void draw_feather(QPainter& painter, const DrawnMatte& matte, const MatteLook& look,
                  const Geometry& geometry) {
    QColor colour = colour_of(matte.kind);
    colour.setAlpha(70);
    painter.save();
    painter.setTransform(to_area(geometry), true);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, matte.feather, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    painter.drawPath(path_through(matte, look.closed));
    painter.restore();
}

}  // namespace

QColor colour_of(DrawnMatte::Kind kind) {
    return kind == DrawnMatte::Kind::kGarbage ? QColor(255, 90, 70) : QColor(70, 190, 255);
}

QPainterPath outline_of(const DrawnMatte& matte, const Geometry& geometry, bool closed) {
    return to_area(geometry).map(path_through(matte, closed));
}

void draw_matte(QPainter& painter, const DrawnMatte& matte, const MatteLook& look, const Geometry& geometry,
                double ratio) {
    if (matte.points.empty()) return;
    const QColor colour = colour_of(matte.kind);
    if (matte.feather > 0.0) draw_feather(painter, matte, look, geometry);
    draw_line(painter, outline_of(matte, geometry, look.closed), colour, look.chosen ? 2.0 * ratio : ratio);
    for (std::size_t n = 0; n < matte.points.size(); ++n) {
        const Point middle = geometry.to_area({matte.points[n][0], matte.points[n][1]});
        QRectF square(0.0, 0.0, kPointSide * ratio, kPointSide * ratio);
        square.moveCenter(to_qt(middle));
        painter.fillRect(square, Qt::black);
        const double seam = ratio;
        painter.fillRect(square.adjusted(seam, seam, -seam, -seam), look.point == n ? Qt::white : colour);
    }
}

}  // namespace veloxa::viewer
