// Folds retained shadow into the key of a span: lowers the matte where there is shadow and adds a tint there.
//
// Colour in role order, matte (255 = backing) and shadow density (0 = none) on the working scale; n pixels;
// outputs must not overlap inputs. Colour is capped at 255 and not floored.
#pragma once

#include <cstddef>
#include <cstdint>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct CombineShadowParams {
    std::int32_t low, high;  // levels of light between which shadow is stretched
    double density;          // per cent
    ControlTriple tint;      // role 0, role 1, primary
};

inline CombineShadowParams combine_shadow_params(const ControlBlock& controls) {
    return {controls.get(controls::kShadowLow), controls.get(controls::kShadowHigh),
            static_cast<double>(controls.get(controls::kShadowDensity)), controls.get(controls::kShadowTint)};
}

using CombineShadow = void(const CombineShadowParams& params, const RolePixels& fg, const float* matte,
                           const float* shadow, const RoleOutput& out, float* alpha, std::size_t n);
LANE_KERNEL(CombineShadow, combine_shadow);
