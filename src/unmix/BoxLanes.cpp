#include "unmix/BoxKernel.h"

namespace LANES {

namespace {

template <class Fold>
[[gnu::always_inline]] inline void fold_boxes(const float* in, int radius, float* __restrict scratch,
                                              float* __restrict out, std::size_t width, std::size_t height,
                                              const Fold& fold) {
    const auto r = static_cast<std::size_t>(radius);
    const std::size_t stride = width + 2 * r;
    for (std::size_t y = 0; y < height; ++y) {
        const float* const rows = in + y * stride;
        for (std::size_t x = 0; x < stride; ++x) {
            float v = rows[x];
            for (std::size_t d = 1; d <= 2 * r; ++d) v = fold(v, rows[d * stride + x]);
            scratch[x] = v;
        }
        float* __restrict const to = out + y * width;
        for (std::size_t x = 0; x < width; ++x) {
            float v = scratch[x];
            for (std::size_t d = 1; d <= 2 * r; ++d) v = fold(v, scratch[x + d]);
            to[x] = v;
        }
    }
}

// Compilers unroll the taps of a radius that they know.
template <class Fold>
[[gnu::always_inline]] inline void fold_known(const float* in, int radius, float* scratch, float* out,
                                              std::size_t width, std::size_t height, const Fold& fold) {
    switch (radius) {
        case 1: return fold_boxes(in, 1, scratch, out, width, height, fold);
        case 2: return fold_boxes(in, 2, scratch, out, width, height, fold);
        case 3: return fold_boxes(in, 3, scratch, out, width, height, fold);
        case 5: return fold_boxes(in, 5, scratch, out, width, height, fold);
        default: return fold_boxes(in, radius, scratch, out, width, height, fold);
    }
}

}  // namespace

void box_sum(const float* in, int radius, float* scratch, float* out, std::size_t width, std::size_t height) {
    fold_known(in, radius, scratch, out, width, height, [](float a, float b) { return a + b; });
}

void box_most_of(const float* in, int radius, float* scratch, float* out, std::size_t width, std::size_t height) {
    fold_known(in, radius, scratch, out, width, height, [](float a, float b) { return a > b ? a : b; });
}

}  // namespace LANES
