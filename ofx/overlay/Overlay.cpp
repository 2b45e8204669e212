#include "overlay/Overlay.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

constexpr double kDotRadius = 4.0;  // pixels of the screen
constexpr double kReach = 7.0;
constexpr std::size_t kCorners = 16;  // of what stands for a circle
constexpr CanvasColour kDark{0.0f, 0.0f, 0.0f}, kLight{1.0f, 1.0f, 1.0f}, kMarked{1.0f, 0.78f, 0.0f},
    kWaiting{0.3f, 0.8f, 1.0f};

PixelGrid full_size(const Instance& instance) {
    return {{1.0, 1.0}, instance.pixel_aspect()};
}

std::array<OfxPointD, kCorners> circle(const OfxPointD& middle, const OfxPointD& pixel, double radius) {
    std::array<OfxPointD, kCorners> points{};
    for (std::size_t n = 0; n < kCorners; ++n) {
        const double angle = 2.0 * std::numbers::pi * static_cast<double>(n) / kCorners;
        points[n] = {middle.x + radius * pixel.x * std::cos(angle),
                     middle.y + radius * pixel.y * std::sin(angle)};
    }
    return points;
}

// Seen on any colour.
void draw_line(Canvas& canvas, std::span<const OfxPointD> points, const CanvasColour& colour) {
    canvas.outline(points, kDark, 3.0f);
    canvas.outline(points, colour, 1.0f);
}

void draw_box(Canvas& canvas, const OfxRectD& box, const CanvasColour& colour) {
    const std::array<OfxPointD, 4> corners{
        {{box.x1, box.y1}, {box.x2, box.y1}, {box.x2, box.y2}, {box.x1, box.y2}}};
    draw_line(canvas, corners, colour);
}

// Filled in the frame where the sample was taken, a ring in others.
void draw_mark(Canvas& canvas, const SampleMark& mark, const Overlay::Event& event, bool aimed) {
    CanvasColour colour{};
    for (std::size_t c = 0; c < 3; ++c) colour[c] = static_cast<float>(std::clamp(mark.colour[c], 0.0, 1.0));
    const double radius = aimed ? kDotRadius + 2.0 : kDotRadius;
    const auto dot = circle({mark.place[0], mark.place[1]}, event.pixel, radius);
    if (mark.time == event.time) {
        canvas.fill(dot, colour);
        draw_line(canvas, dot, kLight);
    } else {
        draw_line(canvas, dot, colour);
    }
}

}  // namespace

std::vector<Box> Overlay::marked(const Instance& instance) const {
    if (brush_) return stroke_.areas();
    Box box = full_size(instance).pixels({std::min(from_.x, to_.x), std::min(from_.y, to_.y),
                                          std::max(from_.x, to_.x), std::max(from_.y, to_.y)});
    // A click marks the pixel under it.
    box.r = std::max(box.r, box.x + 1);
    box.t = std::max(box.t, box.y + 1);
    return {box};
}

std::optional<SampleMark> Overlay::under_pen(const std::vector<SampleMark>& marks) const {
    if (!pen_) return std::nullopt;
    const auto distance = [&](const SampleMark& mark) {
        return std::hypot((mark.place[0] - pen_->x) / pixel_.x, (mark.place[1] - pen_->y) / pixel_.y);
    };
    // Of those that lie on each other the newest, which is drawn last.
    const auto nearest = std::min_element(marks.rbegin(), marks.rend(), [&](const auto& a, const auto& b) {
        return distance(a) < distance(b);
    });
    if (nearest == marks.rend() || !(distance(*nearest) <= kReach)) return std::nullopt;
    return *nearest;
}

bool Overlay::remove_under_pen(Instance& instance, std::size_t tool, OfxTime time) const {
    const auto aimed = under_pen(instance.editor().marks(tool));
    if (aimed) instance.editor().remove(*aimed, time);
    return aimed.has_value();
}

void Overlay::give_up() {
    tool_.reset();
    stroke_.clear();
}

bool Overlay::press(Instance& instance, const Event& event) {
    pen_ = event.pen;
    pixel_ = event.pixel;
    const auto tool = instance.editor().active_tool();
    if (!tool) return false;
    if (control_) {
        remove_under_pen(instance, *tool, event.time);
        return true;
    }
    tool_ = tool;
    from_ = to_ = event.pen;
    const OwnParameters& own = instance.editor().own();
    brush_ = own.integer(kShape) == kStroke;
    if (brush_) {
        const double size = std::clamp(own.number(kBrush, 15.0), 1.0, 999.0);
        const PixelGrid grid = full_size(instance);
        stroke_.begin(grid.x_pixels(event.pen.x), grid.y_pixels(event.pen.y), static_cast<int>(size),
                      instance.full_frame(event.time));
    }
    return true;
}

bool Overlay::move(Instance& instance, const Event& event) {
    pen_ = event.pen;
    pixel_ = event.pixel;
    if (!tool_) return false;
    to_ = event.pen;
    if (brush_) {
        const PixelGrid grid = full_size(instance);
        stroke_.move(grid.x_pixels(event.pen.x), grid.y_pixels(event.pen.y));
    }
    return true;
}

bool Overlay::release(Instance& instance, const Event& event) {
    if (!tool_) return false;
    move(instance, event);
    const PenStroke stroke{*tool_, event.time, marked(instance)};
    give_up();
    instance.pen_stroke(stroke, event.scale);
    return true;
}

bool Overlay::key_down(Instance& instance, const Event& event) {
    if (event.key == kOfxKey_Control_L || event.key == kOfxKey_Control_R) control_ = true;
    if (event.key == kOfxKey_Escape) {
        const bool waits = !instance.pending_areas().empty();
        if (!tool_ && !waits) return false;
        if (!tool_) instance.drop_pending();
        give_up();
        return true;
    }
    if (event.key != kOfxKey_Delete && event.key != kOfxKey_BackSpace) return false;
    const auto tool = instance.editor().active_tool();
    return tool && !tool_ && remove_under_pen(instance, *tool, event.time);
}

bool Overlay::key_up(const Event& event) {
    if (event.key == kOfxKey_Control_L || event.key == kOfxKey_Control_R) control_ = false;
    return false;
}

void Overlay::change_focus() {
    control_ = false;
    pen_.reset();
    give_up();
}

void Overlay::draw(Instance& instance, const Event& event, Canvas& canvas) const {
    const PixelGrid grid = full_size(instance);
    for (const Box& area : instance.pending_areas()) draw_box(canvas, grid.canonical(area), kWaiting);
    const auto tool = instance.editor().active_tool();
    if (!tool) return;
    const std::vector<SampleMark> marks = instance.editor().marks(*tool);
    const auto aimed = under_pen(marks);
    for (const SampleMark& mark : marks) {
        draw_mark(canvas, mark, event, aimed && *aimed == mark);
    }
    if (!tool_) return;
    for (const Box& area : marked(instance)) draw_box(canvas, grid.canonical(area), kMarked);
}

}  // namespace veloxa::ofx
