#include "images/PixelView.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

std::size_t sample_bytes(SampleDepth depth) {
    return depth == SampleDepth::kByte ? 1 : depth == SampleDepth::kFloat ? 4 : 2;
}

constexpr std::ptrdiff_t kCaches = std::ptrdiff_t{4} << 20;  // as large as a core's own ones are

std::byte* address(const PixelView& view, int y, int x) {
    const auto pixel = static_cast<std::ptrdiff_t>(sample_bytes(view.depth)) * view.components;
    return view.data + (std::ptrdiff_t{y} - view.bounds.y) * view.row_bytes +
           (std::ptrdiff_t{x} - view.bounds.x) * pixel;
}

}  // namespace

void read_row(const PixelView& view, int y, int x, int r, const std::array<float*, 4>& out) {
    const Box& box = view.bounds;
    y = std::clamp(y, box.y, box.t - 1);
    // The part of the span that is there, at least one pixel for the rest to repeat.
    const int from = std::clamp(x, box.x, box.r - 1);
    const int count = std::max(1, std::min(r, box.r) - from);
    const int before = std::clamp(from - x, 0, r - x - 1);
    std::array<float*, 4> target = out;
    for (float*& pixels : target) pixels = pixels != nullptr ? pixels + before : nullptr;
    split_pixels(view.depth, view.components, address(view, y, from), target,
                 static_cast<std::size_t>(count));
    for (std::size_t n = 0; n < static_cast<std::size_t>(view.components); ++n) {
        if (out[n] == nullptr) continue;
        std::fill(out[n], target[n], target[n][0]);
        std::fill(target[n] + count, out[n] + (r - x), target[n][count - 1]);
    }
}

void write_row(const PixelView& view, int y, int x, int r, const std::array<const float*, 4>& rgba) {
    const bool alone = view.components == 1;
    const std::array<const float*, 4> planes = alone ? std::array{rgba[3], rgba[0], rgba[1], rgba[2]} : rgba;
    join_pixels(view.depth, view.components, planes, address(view, y, x), static_cast<std::size_t>(r - x),
                std::abs(view.row_bytes) * view.bounds.height() > kCaches);
}

void clear_row(const PixelView& view, int y, int x, int r) {
    if (r <= x) return;
    const std::size_t pixel = sample_bytes(view.depth) * static_cast<std::size_t>(view.components);
    std::memset(address(view, y, x), 0, pixel * static_cast<std::size_t>(r - x));
}

}  // namespace veloxa::ofx
