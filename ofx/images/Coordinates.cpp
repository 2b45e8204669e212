#include "images/Coordinates.h"

#include <cmath>

#include "ZoImage/Convert.h"

namespace veloxa::ofx {

namespace {

int limited(double v) {
    constexpr double kFar = kFarAway;
    if (!(v > -kFar)) return -kFarAway;
    return Zo::Image::to_int(v < kFar ? v : kFar);
}

// A pixel's edge that was scaled there and back must not take in the pixel beside it.
constexpr double kSlack = 1e-6;

}  // namespace

Zo::Image::Box PixelGrid::pixels(const OfxRectD& r) const {
    const auto down = [](double v) { return limited(std::floor(v + kSlack)); };
    const auto up = [](double v) { return limited(std::ceil(v - kSlack)); };
    return {down(x_pixels(r.x1)), down(y_pixels(r.y1)), up(x_pixels(r.x2)), up(y_pixels(r.y2))};
}

OfxRectD PixelGrid::canonical(const Zo::Image::Box& b) const {
    return {b.x * aspect / scale[0], b.y / scale[1], b.r * aspect / scale[0], b.t / scale[1]};
}

bool is_endless(const Zo::Image::Box& box) {
    return box.x <= -kFarAway || box.y <= -kFarAway || box.r >= kFarAway || box.t >= kFarAway;
}

}  // namespace veloxa::ofx
