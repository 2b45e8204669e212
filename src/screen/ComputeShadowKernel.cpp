#include "screen/ComputeShadowKernel.h"

#include "screen/OneNaN.h"
#include "stages/KernelMath.h"

using namespace kernel;

ComputeShadowParams compute_shadow_params(const ControlBlock& controls) {
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto sum = std::int64_t{backing[0]} + backing[1] + backing[2];
    return {255.0 / static_cast<double>(sum)};
}

void compute_shadow(const ComputeShadowParams& params, const RolePixels& backing, float* __restrict density,
                    std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const float s = (backing.role1[i] + backing.role0[i]) + backing.primary[i];
        const double v = clamp_to(0.0, 255.0, static_cast<double>(s) * params.gain);
        density[i] = one_nan(static_cast<float>(255.0 - v));
    }
}
