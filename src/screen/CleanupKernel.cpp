#include "screen/CleanupKernel.h"

#include "controls/Controls.h"
#include "stages/KernelMath.h"

using namespace kernel;

namespace {

// How far a pixel is pushed, 0 to 255.
double push(const CleanupParams& params, float a) {
    const double k = max_of(to_int(a - params.threshold), 0);
    return cap_at(255.0, k * params.strength);
}

}  // namespace

CleanupParams cleanup_params(const ControlBlock& controls) {
    return {static_cast<float>(controls.get(controls::kCleanUpRecover)),
            controls.get(controls::kCleanUp) / 100.0};
}

void cleanup_colour(const CleanupParams& params, const float* matte, const float* colour,
                    float* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const double c = push(params, matte[i]);
        out[i] = static_cast<float>(static_cast<double>(colour[i]) * (255.0 - c) / 255.0);
    }
}

void cleanup_matte(const CleanupParams& params, const float* matte, float* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const auto a = static_cast<double>(matte[i]);
        out[i] = static_cast<float>(((255.0 - a) * push(params, matte[i])) / 255.0 + a);
    }
}
