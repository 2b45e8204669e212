#include "screen/ShrinkKernel.h"

#include "framework/FoldLines.h"
#include "screen/SlidingMax.h"

void shrink_row(const float* centre, std::size_t radius, float* __restrict scratch, float* __restrict out,
                std::size_t n) {
    const std::size_t count = n + 2 * radius;
    const float* first = centre - radius;
    for (std::size_t i = 0; i < count; ++i) scratch[i] = first[i] == 0.0f ? 1.0f : 0.0f;
    sliding_max(scratch, count, 2 * radius + 1);
    for (std::size_t i = 0; i < n; ++i) out[i] = scratch[i] > 0.0f ? 0.0f : centre[i];
}

void shrink_lines(std::span<const float* const> lines, float* out, std::size_t n) {
    fold_lines(lines, out, n, [](float kept, float v) { return v == 0.0f ? 0.0f : kept; });
}
