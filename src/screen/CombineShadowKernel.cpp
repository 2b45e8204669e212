#include "screen/CombineShadowKernel.h"

CombineShadowParams combine_shadow_params(const ControlBlock& controls) {
    return {controls.get(controls::kShadowLow), controls.get(controls::kShadowHigh),
            static_cast<double>(controls.get(controls::kShadowDensity)), controls.get(controls::kShadowTint)};
}

LANE_KERNEL(CombineShadow, combine_shadow);
