#include "panel/ToolIcons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <utility>

namespace veloxa::viewer {

namespace {

// Shapes stand in a square of 16 by 16.
constexpr double kSide = 16.0;

void draw_brush(QPainter& painter) {
    painter.drawLine(QPointF(14, 2), QPointF(7.5, 8.5));
    QPainterPath tip(QPointF(8.5, 9.5));
    tip.cubicTo(8, 13, 5, 14, 2, 14);
    tip.cubicTo(4, 12.5, 3, 9, 6.5, 7.5);
    tip.closeSubpath();
    painter.fillPath(tip, painter.pen().color());
}

void draw_eraser(QPainter& painter) {
    painter.drawPolygon(QPolygonF{{10, 2.5}, {14, 6.5}, {7, 13.5}, {3, 9.5}});
    painter.drawLine(QPointF(6.5, 6), QPointF(10.5, 10));
    painter.drawLine(QPointF(7, 13.5), QPointF(14, 13.5));
}

void draw_picker(QPainter& painter) {
    painter.drawLine(QPointF(2.5, 13.5), QPointF(9, 7));
    painter.drawLine(QPointF(7, 5), QPointF(11, 9));
    QPainterPath bulb;
    bulb.addEllipse(QPointF(11.5, 4.5), 2.6, 2.6);
    painter.fillPath(bulb, painter.pen().color());
}

void draw_lock(QPainter& painter) {
    painter.drawArc(QRectF(5, 2, 6, 9), 0, 180 * 16);
    QPainterPath body;
    body.addRoundedRect(QRectF(3, 7, 10, 7), 1, 1);
    painter.fillPath(body, painter.pen().color());
}

void draw_triangle(QPainter& painter, double tip, double base) {
    QPainterPath path(QPointF(base, 3));
    path.lineTo(tip, 8);
    path.lineTo(base, 13);
    path.closeSubpath();
    painter.fillPath(path, painter.pen().color());
}

void draw_play(QPainter& painter) {
    draw_triangle(painter, 13, 4);
}

void draw_pause(QPainter& painter) {
    painter.fillRect(QRectF(4, 3, 3, 10), painter.pen().color());
    painter.fillRect(QRectF(9, 3, 3, 10), painter.pen().color());
}

void draw_back(QPainter& painter) {
    draw_triangle(painter, 5, 12);
    painter.drawLine(QPointF(3.5, 3), QPointF(3.5, 13));
}

void draw_forward(QPainter& painter) {
    draw_triangle(painter, 11, 4);
    painter.drawLine(QPointF(12.5, 3), QPointF(12.5, 13));
}

void draw_loop(QPainter& painter) {
    painter.drawArc(QRectF(3, 3, 10, 10), 60 * 16, 300 * 16);
    QPainterPath head(QPointF(9.5, 1));
    head.lineTo(14, 3.5);
    head.lineTo(9.8, 6.5);
    head.closeSubpath();
    painter.fillPath(head, painter.pen().color());
}

void draw_ring(QPainter& painter) {
    painter.drawEllipse(QPointF(8, 8), 5, 5);
}

using Draw = void (*)(QPainter&);

Draw shape_of(const QString& name) {
    static constexpr std::pair<const char*, Draw> kShapes[]{
        {"brush", draw_brush}, {"erase", draw_eraser},    {"pick", draw_picker},
        {"lock", draw_lock},   {"play", draw_play},       {"pause", draw_pause},
        {"back", draw_back},   {"forward", draw_forward}, {"loop", draw_loop}};
    for (const auto& [word, draw] : kShapes) {
        if (name.contains(QLatin1String(word), Qt::CaseInsensitive)) return draw;
    }
    return draw_ring;
}

class Drawn : public QIconEngine {
  public:
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
};

class ToolEngine final : public Drawn {
  public:
    ToolEngine(Draw draw, const QColor& colour) : draw_(draw), colour_(colour) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette palette = QGuiApplication::palette();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / kSide, rect.height() / kSide);
        if (colour_.isValid()) {
            painter->setPen(QPen(Qt::gray, 0.5));
            painter->setBrush(colour_);
            painter->drawRect(QRectF(0.5, 12.5, kSide - 1.0, 3.0));
            painter->setBrush(Qt::NoBrush);
            painter->translate(2, 0);
            painter->scale(0.75, 0.75);
        }
        painter->setPen(QPen(palette.color(group, QPalette::ButtonText), 1.6));
        draw_(*painter);
        painter->restore();
    }
    QIconEngine* clone() const override { return new ToolEngine(*this); }

  private:
    Draw draw_;
    QColor colour_;
};

class SwatchEngine final : public Drawn {
  public:
    explicit SwatchEngine(const QColor& colour) : colour_(colour) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        if (colour_.alpha() < 255) {
            painter->fillRect(rect, Qt::white);
            painter->fillRect(rect, QBrush(Qt::gray, Qt::Dense4Pattern));
        }
        painter->save();
        if (mode == QIcon::Disabled) painter->setOpacity(0.4);
        painter->fillRect(rect, colour_);
        painter->setPen(Qt::gray);
        painter->drawRect(rect.adjusted(0, 0, -1, -1));
        painter->restore();
    }
    QIconEngine* clone() const override { return new SwatchEngine(*this); }

  private:
    QColor colour_;
};

}  // namespace

QIcon tool_icon(const QString& name, const QColor& colour) {
    return QIcon(new ToolEngine(shape_of(name), colour));
}

QIcon swatch_icon(const QColor& colour) {
    return QIcon(new SwatchEngine(colour));
}

}  // namespace veloxa::viewer
