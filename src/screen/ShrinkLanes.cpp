#include "lanes/FoldLines.h"
#include "lanes/SlidingMax.h"

namespace LANES {

void shrink_row(const float* centre, std::size_t radius, float* __restrict scratch, float* __restrict out,
                std::size_t n) {
    const float* first = centre - radius;
    sliding_max(
        2 * radius + 1, n, [first](std::size_t i) { return first[i] == 0.0f ? 1.0f : 0.0f; }, scratch,
        [centre, out](std::size_t i, float zero) { out[i] = zero > 0.0f ? 0.0f : centre[i]; });
}

void shrink_lines(std::span<const float* const> lines, float* out, std::size_t n) {
    fold_lines(lines, out, n, [](auto kept, auto v) { return v == 0.0f ? decltype(v){} : kept; });
}

}  // namespace LANES
