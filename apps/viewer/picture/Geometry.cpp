#include "picture/Geometry.h"

#include <algorithm>
#include <cmath>

namespace veloxa::viewer {

namespace {

// Far beyond any picture, and safe to convert.
constexpr double kFar = 1 << 30;

int rounded_down(double v) {
    return static_cast<int>(std::clamp(std::floor(v), -kFar, kFar));
}

int rounded_up(double v) {
    return static_cast<int>(std::clamp(std::ceil(v), -kFar, kFar));
}

double clamped(double zoom) {
    return std::clamp(zoom, kLeastZoom, kMostZoom);
}

}  // namespace

Point Geometry::to_picture(Point area) const {
    return {centre.x + (area.x - 0.5 * width) / (zoom * aspect), centre.y - (area.y - 0.5 * height) / zoom};
}

Point Geometry::to_area(Point picture) const {
    return {0.5 * width + (picture.x - centre.x) * (zoom * aspect),
            0.5 * height - (picture.y - centre.y) * zoom};
}

Zo::Image::Box Geometry::visible(const Zo::Image::Box& whole) const {
    const Point top_left = to_picture({0.0, 0.0});
    const Point bottom_right = to_picture({static_cast<double>(width), static_cast<double>(height)});
    Zo::Image::Box box{rounded_down(top_left.x), rounded_down(bottom_right.y), rounded_up(bottom_right.x),
                       rounded_up(top_left.y)};
    box.intersect(whole);
    return box;
}

Geometry Geometry::fitted(const Zo::Image::Format& format) const {
    Geometry to = *this;
    to.aspect = format.pixel_aspect > 0.0 ? format.pixel_aspect : 1.0;
    if (format.box.empty() || width <= 0 || height <= 0) return to;
    to.zoom = clamped(std::min(width / (format.box.width() * to.aspect), 1.0 * height / format.box.height()));
    to.centre = {0.5 * (format.box.x + format.box.r), 0.5 * (format.box.y + format.box.t)};
    return to;
}

Geometry Geometry::zoomed(double to_zoom, Point area) const {
    Geometry to = *this;
    to.zoom = clamped(to_zoom);
    const Point before = to_picture(area);
    const Point after = to.to_picture(area);
    to.centre = {centre.x + before.x - after.x, centre.y + before.y - after.y};
    return to;
}

Geometry Geometry::panned(double right, double down) const {
    Geometry to = *this;
    to.centre = {centre.x - right / (zoom * aspect), centre.y + down / zoom};
    return to;
}

}  // namespace veloxa::viewer
