#include <QPainter>
#include <algorithm>

#include "area/Marks.h"
#include "area/PictureArea.h"
#include "area/PointerMode.h"

namespace veloxa::viewer {

namespace {

constexpr double kHandle = 9.0;  // the screen's points
constexpr double kArm = 10.0;
constexpr int kMargin = 8;

void draw_shaded(QPainter& painter, const Shaded& shaded, const Geometry& from, const Geometry& to) {
    if (shaded.pixels.empty()) return;
    const QImage image(reinterpret_cast<const uchar*>(shaded.pixels.data()), shaded.width, shaded.height,
                       4 * static_cast<qsizetype>(shaded.width), QImage::Format_RGB32);
    if (from == to) {
        painter.drawImage(QPoint(0, 0), image);
        return;
    }
    const Point top_left = to.to_area(from.to_picture({0.0, 0.0}));
    const Point bottom_right =
        to.to_area(from.to_picture({static_cast<double>(shaded.width), static_cast<double>(shaded.height)}));
    painter.drawImage(QRectF(to_qt(top_left), to_qt(bottom_right)), image);
}

void draw_caption(QPainter& painter, const QString& caption, const QRect& seen, bool right, double ratio) {
    if (caption.isEmpty() || seen.width() < 4 * kMargin * ratio) return;
    painter.save();
    painter.scale(ratio, ratio);
    const QRectF room =
        QRectF(seen.x() / ratio, seen.y() / ratio, seen.width() / ratio, seen.height() / ratio)
            .adjusted(kMargin, kMargin, -kMargin, -kMargin);
    const QFontMetricsF metrics(painter.font());
    const QString text = metrics.elidedText(caption, Qt::ElideMiddle, room.width() - kMargin);
    QRectF box(room.topLeft(), QSizeF(metrics.horizontalAdvance(text) + kMargin, metrics.height() + 4.0));
    if (right) box.moveRight(room.right());
    painter.fillRect(box, QColor(0, 0, 0, 170));
    painter.setPen(Qt::white);
    painter.drawText(box, Qt::AlignCenter, text);
    painter.restore();
}

void draw_crosshair(QPainter& painter, QPointF middle, double ratio) {
    const double arm = kArm * ratio;
    QPainterPath path;
    path.moveTo(middle - QPointF(arm, 0.0));
    path.lineTo(middle + QPointF(arm, 0.0));
    path.moveTo(middle - QPointF(0.0, arm));
    path.lineTo(middle + QPointF(0.0, arm));
    draw_line(painter, path, Qt::white, ratio);
}

}  // namespace

void PictureArea::paint_pane(QPainter& painter, Pane pane) {
    const PaneRoom rooms = room();
    const QRect seen = rooms.seen(pane);
    if (seen.isEmpty()) return;
    painter.save();
    painter.setClipRect(seen);
    painter.translate(rooms.origin(pane));
    const Picture& shown = picture(pane);
    draw_shaded(painter, shown.shaded, shown.geometry, geometry_);
    painter.setRenderHint(QPainter::Antialiasing);
    mode().paint(painter, geometry_, ratio());
    if (crosshair_) draw_crosshair(painter, to_qt(geometry_.to_area(*crosshair_)), ratio());
    painter.restore();
    draw_caption(painter, shown.caption, seen, panes_ == Panes::kWipe && pane == Pane::kSecond, ratio());
}

void PictureArea::paint_line(QPainter& painter) const {
    const QSize size = device_size();
    if (panes_ != Panes::kWipe) return;
    const double x = room().line();
    QPainterPath path;
    path.moveTo(x, 0.0);
    path.lineTo(x, size.height());
    draw_line(painter, path, Qt::white, ratio());
    QPainterPath handle;
    handle.addEllipse(QPointF(x, 0.5 * size.height()), kHandle * ratio(), kHandle * ratio());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(handle, QColor(0, 0, 0, 150));
    draw_line(painter, handle, Qt::white, ratio());
    painter.restore();
}

void PictureArea::paintEvent(QPaintEvent* /*event*/) {
    // Another screen may have come without another size.
    if (room().size() != QSize(geometry_.width, geometry_.height)) fill_room();
    QPainter painter(this);
    painter.scale(1.0 / ratio(), 1.0 / ratio());
    painter.fillRect(QRect({0, 0}, device_size()), QColor::fromRgb(kSurround));
    paint_pane(painter, Pane::kFirst);
    paint_pane(painter, Pane::kSecond);
    paint_line(painter);
    if (!hasFocus()) return;
    const double edge = ratio();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette().highlight().color(), edge));
    painter.drawRect(QRectF(QPointF(0, 0), QSizeF(device_size()))
                         .adjusted(0.5 * edge, 0.5 * edge, -0.5 * edge, -0.5 * edge));
}

}  // namespace veloxa::viewer
