// Shadow density of a span: how much darker the interpolated backing is than the nominal backing colour.
//
// Colour in any order on the working scale; density 0 (no shadow) to 255 (black); n pixels; the output must
// not overlap the inputs.
#pragma once

#include <cstddef>

#include "controls/ControlBlock.h"
#include "lanes/LaneKernel.h"
#include "stages/ChannelRoles.h"

struct ComputeShadowParams {
    double gain;  // brings the nominal backing's brightness to 255
};

ComputeShadowParams compute_shadow_params(const ControlBlock& controls);

using ComputeShadow = void(const ComputeShadowParams& params, const RolePixels& backing, float* density,
                           std::size_t n);
extern const LaneKernel<ComputeShadow> compute_shadow;
