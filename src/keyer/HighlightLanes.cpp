#include "keyer/OutputKernel.h"
#include "lanes/KernelMath.h"

using kernel::max_of;
using kernel::one_nan;

namespace LANES {

namespace {

constexpr float kLargestHalf = 65504.0f;

[[gnu::always_inline]] inline float finite(float v) {
    return kernel::clamp_to(-kLargestHalf, kLargestHalf, v);
}

}  // namespace

void highlight_share(const std::array<const float*, 3>& fg, const float* subject, const float* k, float* keep,
                     std::size_t n) {
    const float* red = fg[0];
    const float* green = fg[1];
    const float* blue = fg[2];
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        // A NaN is no highlight.
        const float most = max_of(blue[i], max_of(green[i], max_of(red[i], 0.0f)));
        const float over = kernel::clamp_to(0.0f, 1.0f, most - 1.0f);
        keep[i] = over > 0.0f && k[i] > 0.0f ? over * kernel::clamp_to(0.0f, 1.0f, subject[i] / k[i]) : 0.0f;
    }
}

void keep_highlights(OutputMode mode, const float* keep, const float* fg, const float* background,
                     const float* k, float* out, std::size_t n) {
    const bool alone = mode == OutputMode::kUnpremultiplied;
    const bool over = mode == OutputMode::kComposite;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float own = finite(fg[i]);
        const float part = own * k[i];
        const float mixed = part + (1.0f - k[i]) * background[i];
        const float kept = alone || k[i] == 1.0f ? own : over ? mixed : part;
        const float between = finite(out[i]) + keep[i] * (kept - finite(out[i]));
        out[i] = keep[i] == 0.0f ? out[i] : one_nan(keep[i] == 1.0f ? kept : between);
    }
}

}  // namespace LANES
