#include "lanes/FoldLines.h"
#include "lanes/SlidingJoin.h"

namespace LANES {

namespace {

// The first operand stands against ties and NaN.
constexpr auto larger = [](auto m, auto v) { return v > m ? v : m; };

}  // namespace

void shrink_cu_row(const float* centre, std::size_t half_width, float fraction, float* __restrict scratch,
                   float* __restrict out, std::size_t n) {
    const std::size_t whole = half_width - 1;
    const float* first = centre - whole;
    const float* left = centre - half_width;
    const float* right = centre + half_width;
    for (std::size_t i = 0; i < n + 2 * whole; ++i) scratch[i] = larger(0.0f, first[i]);
    sliding_join(scratch, 2 * whole + 1, n, larger, [=](std::size_t i, float m) {
        out[i] = larger(larger(m, fraction * left[i]), fraction * right[i]);
    });
}

void shrink_cu_lines(std::span<const float* const> lines, float* out, std::size_t n) {
    fold_lines(lines, out, n, larger);
}

void shrink_cu_end(const float* line, float fraction, float* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = larger(out[i], fraction * line[i]);
}

}  // namespace LANES
