#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

#include "timeline/FrameStrip.h"

namespace veloxa::viewer {

namespace {

const QColor kReading(215, 175, 60);
const QColor kPlate(85, 125, 175);
const QColor kResult(80, 165, 95);
const QColor kFailed(225, 80, 70);
const QColor kWorst(245, 160, 60);

// How many of a column's frames are in which state.
struct Column {
    int plates = 0;
    int results = 0;
    bool reading = false;
    bool failed = false;
};

// The room between numbers: 1, 2 or 5 times a power of ten frames.
int spacing(double frames) {
    double step = 1.0;
    for (;; step *= 10.0) {
        for (const double factor : {1.0, 2.0, 5.0}) {
            if (step * factor >= frames) return static_cast<int>(std::min(step * factor, 1e9));
        }
    }
}

}  // namespace

double FrameStrip::left_of(int index) const {
    return static_cast<double>(index) * width() / range_.count();
}

void FrameStrip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    paint_states(painter);
    paint_numbers(painter);
    paint_marks(painter);
    if (!hasFocus()) return;
    painter.setPen(palette().color(QPalette::Link));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

// In device pixels, so that no column is blurred over two. A column that stands for many frames is as full as
// the share of them that is in memory; one that failed or is being read takes all of it.
void FrameStrip::paint_states(QPainter& painter) const {
    const double ratio = devicePixelRatio();
    const int columns = std::max(1, static_cast<int>(std::lround(width() * ratio)));
    const double per_frame = static_cast<double>(columns) / range_.count();
    std::vector<Column> states(static_cast<std::size_t>(columns));
    for (const auto& [index, known] : known_) {
        const int first = std::min(static_cast<int>(index * per_frame), columns - 1);
        const int last =
            std::clamp(static_cast<int>(std::ceil((index + 1) * per_frame)) - 1, first, columns - 1);
        for (int x = first; x <= last; ++x) {
            Column& column = states[static_cast<std::size_t>(x)];
            column.plates += known.state == FrameState::kPlate;
            column.results += known.state == FrameState::kResult;
            column.reading |= known.state == FrameState::kReading;
            column.failed |= known.state == FrameState::kFailed;
        }
    }
    const int top = static_cast<int>(fontMetrics().height() * ratio);
    const int full = static_cast<int>(height() * ratio) - top;
    const double frames = std::max(1.0, 1.0 / per_frame);
    painter.save();
    painter.scale(1.0 / ratio, 1.0 / ratio);
    for (int x = 0; x < columns; ++x) {
        const Column& column = states[static_cast<std::size_t>(x)];
        int bottom = top + full;
        const auto bar = [&](int part, const QColor& colour) {
            painter.fillRect(x, bottom - part, 1, part, colour);
            bottom -= part;
        };
        const auto share = [&](int count) {
            return std::min(bottom - top, static_cast<int>(std::ceil(full * std::min(1.0, count / frames))));
        };
        if (column.failed || column.reading) {
            bar(full, column.failed ? kFailed : kReading);
            continue;
        }
        bar(share(column.results), kResult);
        bar(share(column.plates), kPlate);
    }
    painter.restore();
}

void FrameStrip::paint_numbers(QPainter& painter) const {
    const int room = fontMetrics().horizontalAdvance(QString::number(range_.last) + "00");
    const int step = spacing(static_cast<double>(room) * range_.count() / std::max(width(), 1));
    const int baseline = fontMetrics().ascent();
    for (std::int64_t n = 0; n < range_.count(); n += step) {
        const int index = static_cast<int>(n);
        const double x = left_of(index);
        painter.setPen(palette().color(QPalette::Mid).lighter(200));
        painter.drawLine(QPointF(x, 0), QPointF(x, height()));
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(QPointF(x + 3, baseline), QString::number(range_.at(index)));
    }
}

void FrameStrip::paint_marks(QPainter& painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    const double cell = static_cast<double>(width()) / range_.count();
    const double top = fontMetrics().height();
    if (const std::optional<int> at = worst_ ? index(*worst_) : std::nullopt) {
        const double x = left_of(*at) + cell / 2.0;
        painter.setPen(Qt::NoPen);
        painter.setBrush(kWorst);
        painter.drawPolygon(QPolygonF{{x - 5, top - 6}, {x + 5, top - 6}, {x, top + 3}});
    }
    const int at = index(current_).value_or(0);
    const double width_of = std::max(cell, 2.0);
    const double x = std::min(left_of(at), width() - width_of);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette().color(QPalette::Text), 2));
    if (cell < 6.0) {
        painter.drawLine(QPointF(x + 1, 0), QPointF(x + 1, height()));
    } else {
        painter.drawRect(QRectF(x + 1, top + 1, width_of - 2, height() - top - 2));
    }
    // The number of the current one, over those of the scale.
    const QString number = QString::number(current_);
    const double room = fontMetrics().horizontalAdvance(number) + 6;
    const QRectF plate(std::clamp(x, 0.0, std::max(0.0, width() - room)), 0, room, top);
    painter.fillRect(plate, palette().highlight());
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.drawText(plate, Qt::AlignCenter, number);
}

}  // namespace veloxa::viewer
