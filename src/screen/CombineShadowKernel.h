// Folds retained shadow into the key of a span: lowers the matte where there is shadow and adds a tint there.
//
// Colour in role order, matte (255 = backing) and shadow density (0 = none) on the working scale; n pixels;
// outputs must not overlap inputs. Colour is capped at 255 and not floored.
#pragma once

#include <cstddef>
#include <cstdint>

#include "controls/ControlBlock.h"
#include "lanes/LaneKernel.h"
#include "stages/ChannelRoles.h"

struct CombineShadowParams {
    std::int32_t low, high;  // levels of light between which shadow is stretched
    double density;          // per cent
    ControlTriple tint;      // role 0, role 1, primary
};

CombineShadowParams combine_shadow_params(const ControlBlock& controls);

using CombineShadow = void(const CombineShadowParams& params, const RolePixels& fg, const float* matte,
                           const float* shadow, const RoleOutput& out, float* alpha, std::size_t n);
extern const LaneKernel<CombineShadow> combine_shadow;
