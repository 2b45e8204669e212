#include "framework/BlurKernel.h"

#include "framework/FoldLines.h"

float blur_scale(int radius) {
    return 1.0f / static_cast<float>(2 * radius + 1);
}

void blur_add(std::span<const float* const> lines, float* sum, std::size_t n) {
    fold_lines(lines, sum, n, [](float s, float v) { return s + v; });
}

void blur_finish(float scale, float* sum, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) sum[i] = scale * sum[i];
}
