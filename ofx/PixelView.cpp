#include "PixelView.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace veloxa::ofx {

namespace {

std::size_t sample_bytes(Depth depth) {
    if (depth == Depth::kByte) return sizeof(std::uint8_t);
    return depth == Depth::kShort ? sizeof(std::uint16_t) : sizeof(float);
}

std::byte* address(const PixelView& view, int y, int x) {
    const auto pixel = static_cast<std::ptrdiff_t>(sample_bytes(view.depth)) * view.components;
    return view.data + (std::ptrdiff_t{y} - view.bounds.y) * view.row_bytes +
           (std::ptrdiff_t{x} - view.bounds.x) * pixel;
}

float to_float(float v) {
    return v;
}
float to_float(std::uint8_t v) {
    return static_cast<float>(v) / 255.0f;
}
float to_float(std::uint16_t v) {
    return static_cast<float>(v) / 65535.0f;
}

template <class Sample>
Sample from_float(float v) {
    if constexpr (std::is_same_v<Sample, float>) {
        return v;
    } else {
        // Exact in double; in float the sum would round once more.
        constexpr double kWhite = static_cast<Sample>(-1);
        const float clipped = v > 0.0f ? (v < 1.0f ? v : 1.0f) : 0.0f;
        return static_cast<Sample>(static_cast<double>(clipped) * kWhite + 0.5);
    }
}

// By copy: nothing is promised of the memory's alignment.
template <class Sample>
void read(const std::byte* from, std::size_t stride, float* out, int count) {
    for (int i = 0; i < count; ++i) {
        Sample sample;
        std::memcpy(&sample, from + static_cast<std::size_t>(i) * stride, sizeof sample);
        out[i] = to_float(sample);
    }
}

template <class Sample>
void write(const float* in, std::byte* to, std::size_t stride, int count) {
    for (int i = 0; i < count; ++i) {
        const auto sample = from_float<Sample>(in[i]);
        std::memcpy(to + static_cast<std::size_t>(i) * stride, &sample, sizeof sample);
    }
}

}  // namespace

void read_component(const PixelView& view, int n, int y, int x, int r, float* out) {
    const Zo::Image::Box& box = view.bounds;
    y = std::clamp(y, box.y, box.t - 1);
    // The part of the span that is there, at least one pixel for the rest to repeat.
    const int from = std::clamp(x, box.x, box.r - 1);
    const int count = std::max(1, std::min(r, box.r) - from);
    float* const target = out + std::clamp(from - x, 0, r - x - 1);
    const std::size_t sample = sample_bytes(view.depth);
    const std::size_t stride = sample * static_cast<std::size_t>(view.components);
    const std::byte* const at = address(view, y, from) + sample * static_cast<std::size_t>(n);
    if (view.depth == Depth::kByte) {
        read<std::uint8_t>(at, stride, target, count);
    } else if (view.depth == Depth::kShort) {
        read<std::uint16_t>(at, stride, target, count);
    } else {
        read<float>(at, stride, target, count);
    }
    std::fill(out, target, target[0]);
    std::fill(target + count, out + (r - x), target[count - 1]);
}

void write_row(const PixelView& view, int y, int x, int r, const std::array<const float*, 4>& rgba) {
    const std::size_t sample = sample_bytes(view.depth);
    const std::size_t stride = sample * static_cast<std::size_t>(view.components);
    std::byte* const at = address(view, y, x);
    for (int n = 0; n < view.components; ++n) {
        const float* const in = rgba[view.components == 1 ? 3 : static_cast<std::size_t>(n)];
        std::byte* const to = at + sample * static_cast<std::size_t>(n);
        if (view.depth == Depth::kByte) {
            write<std::uint8_t>(in, to, stride, r - x);
        } else if (view.depth == Depth::kShort) {
            write<std::uint16_t>(in, to, stride, r - x);
        } else {
            write<float>(in, to, stride, r - x);
        }
    }
}

void clear_row(const PixelView& view, int y, int x, int r) {
    if (r <= x) return;
    const std::size_t pixel = sample_bytes(view.depth) * static_cast<std::size_t>(view.components);
    std::memset(address(view, y, x), 0, pixel * static_cast<std::size_t>(r - x));
}

}  // namespace veloxa::ofx
