#include "screen/ComputeShadowKernel.h"

#include <cstdint>

ComputeShadowParams compute_shadow_params(const ControlBlock& controls) {
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto sum = std::int64_t{backing[0]} + backing[1] + backing[2];
    return {255.0 / static_cast<double>(sum)};
}

LANE_KERNEL(ComputeShadow, compute_shadow);
