#include "images/PixelView.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace veloxa::ofx {

namespace {

// The work with a sample of the depth.
template <class Work>
auto with_sample(Depth depth, const Work& work) {
    if (depth == Depth::kByte) return work(std::uint8_t{});
    if (depth == Depth::kShort) return work(std::uint16_t{});
    return work(float{});
}

std::size_t sample_bytes(Depth depth) {
    return with_sample(depth, [](auto sample) { return sizeof sample; });
}

std::byte* address(const PixelView& view, int y, int x) {
    const auto pixel = static_cast<std::ptrdiff_t>(sample_bytes(view.depth)) * view.components;
    return view.data + (std::ptrdiff_t{y} - view.bounds.y) * view.row_bytes +
           (std::ptrdiff_t{x} - view.bounds.x) * pixel;
}

template <class Sample>
float to_float(Sample v) {
    return std::is_same_v<Sample, float>
               ? v
               : static_cast<float>(v) / static_cast<float>(static_cast<Sample>(-1));
}

template <class Sample>
Sample from_float(float v) {
    if constexpr (std::is_same_v<Sample, float>) {
        return v;
    } else {
        // Exact in double; in float the sum would round once more.
        constexpr double kWhite = static_cast<Sample>(-1);
        const float clipped = v > 0.0f ? (v < 1.0f ? v : 1.0f) : 0.0f;
        return static_cast<Sample>(static_cast<double>(clipped) * kWhite + 0.5);  // NOLINT: never negative
    }
}

// All components of a pixel at once, which the compiler turns into shuffles of whole vectors.
template <class Sample, int kComponents>
void read_all(const Sample* in, const std::array<float*, 4>& out, int count) {
    float* __restrict const a = out[0];
    float* __restrict const b = out[1];
    float* __restrict const c = out[2];
    float* __restrict const d = out[3];
    for (int i = 0; i < count; ++i) {
        a[i] = to_float(in[kComponents * i]);
        b[i] = to_float(in[kComponents * i + 1]);
        c[i] = to_float(in[kComponents * i + 2]);
        if constexpr (kComponents == 4) d[i] = to_float(in[kComponents * i + 3]);
    }
}

template <class Sample>
void read(const std::byte* from, int components, const std::array<float*, 4>& out, int count) {
    const auto* const in = reinterpret_cast<const Sample*>(from);
    const bool colour = out[0] != nullptr && out[1] != nullptr && out[2] != nullptr;
    if (components == 4 && colour && out[3] != nullptr) return read_all<Sample, 4>(in, out, count);
    if (components == 3 && colour) return read_all<Sample, 3>(in, out, count);
    for (int n = 0; n < components; ++n) {
        float* const to = out[static_cast<std::size_t>(n)];
        for (int i = 0; to != nullptr && i < count; ++i) to[i] = to_float(in[components * i + n]);
    }
}

template <class Sample>
void write(const std::array<const float*, 4>& in, std::byte* to, int components, int count) {
    auto* __restrict const out = reinterpret_cast<Sample*>(to);
    if (components == 4) {
        for (int i = 0; i < count; ++i) {
            out[4 * i] = from_float<Sample>(in[0][i]);
            out[4 * i + 1] = from_float<Sample>(in[1][i]);
            out[4 * i + 2] = from_float<Sample>(in[2][i]);
            out[4 * i + 3] = from_float<Sample>(in[3][i]);
        }
        return;
    }
    for (int n = 0; n < components; ++n) {
        const float* const from = in[components == 1 ? 3 : static_cast<std::size_t>(n)];
        for (int i = 0; i < count; ++i) out[components * i + n] = from_float<Sample>(from[i]);
    }
}

}  // namespace

void read_row(const PixelView& view, int y, int x, int r, const std::array<float*, 4>& out) {
    const Zo::Image::Box& box = view.bounds;
    y = std::clamp(y, box.y, box.t - 1);
    // The part of the span that is there, at least one pixel for the rest to repeat.
    const int from = std::clamp(x, box.x, box.r - 1);
    const int count = std::max(1, std::min(r, box.r) - from);
    const int before = std::clamp(from - x, 0, r - x - 1);
    std::array<float*, 4> target = out;
    for (float*& pixels : target) pixels = pixels != nullptr ? pixels + before : nullptr;
    const std::byte* const at = address(view, y, from);
    with_sample(view.depth, [&](auto sample) { read<decltype(sample)>(at, view.components, target, count); });
    for (std::size_t n = 0; n < static_cast<std::size_t>(view.components); ++n) {
        if (out[n] == nullptr) continue;
        std::fill(out[n], target[n], target[n][0]);
        std::fill(target[n] + count, out[n] + (r - x), target[n][count - 1]);
    }
}

void write_row(const PixelView& view, int y, int x, int r, const std::array<const float*, 4>& rgba) {
    with_sample(view.depth, [&](auto sample) {
        write<decltype(sample)>(rgba, address(view, y, x), view.components, r - x);
    });
}

void clear_row(const PixelView& view, int y, int x, int r) {
    if (r <= x) return;
    const std::size_t pixel = sample_bytes(view.depth) * static_cast<std::size_t>(view.components);
    std::memset(address(view, y, x), 0, pixel * static_cast<std::size_t>(r - x));
}

}  // namespace veloxa::ofx
