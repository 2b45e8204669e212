#include "lanes/FoldLines.h"

namespace LANES {

void blur_add(std::span<const float* const> lines, float* sum, std::size_t n) {
    fold_lines(
        lines, sum, n, [](auto s, auto v) { return s + v; },
        [](auto s) { return s == s ? s : decltype(s){} + __builtin_nanf(""); });
}

void blur_finish(float scale, float* sum, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) sum[i] = scale * sum[i];
}

}  // namespace LANES
