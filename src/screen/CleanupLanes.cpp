#include "lanes/KernelMath.h"
#include "screen/CleanupKernel.h"

using namespace kernel;

namespace LANES {

namespace {

// How far a pixel is pushed, 0 to 255.
[[gnu::always_inline]] inline double push(const CleanupParams& params, float a) {
    const double k = max_of(to_int(a - params.threshold), 0);
    return cap_at(255.0, k * params.strength);
}

}  // namespace

void cleanup_colour(const CleanupParams& params, const float* matte, const float* colour,
                    float* __restrict out, std::size_t n) {
    const CleanupParams p = params;
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = narrow(wide(colour[i]) * (255.0 - push(p, matte[i])) / 255.0);
    }
}

void cleanup_matte(const CleanupParams& params, const float* matte, float* __restrict out, std::size_t n) {
    const CleanupParams p = params;
    for (std::size_t i = 0; i < n; ++i) {
        const double a = wide(matte[i]);
        out[i] = narrow(((255.0 - a) * push(p, matte[i])) / 255.0 + a);
    }
}

}  // namespace LANES
