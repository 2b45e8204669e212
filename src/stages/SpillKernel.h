// Takes spilled backing light out of a span of foreground and puts ambiance in its place.
//
// Colour in role order and alpha (opacity) on the working scale 0 to 255; results are clamped to 0..255.
// A pixel whose pre-matte is not 0 keeps its colour as it is.
// All pointers address n floats; the outputs overlap no input.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct SpillParams {
    std::int32_t backing0, backing1;  // role 0, role 1
    double level0, level1, levelP;    // the backing once more, for products
    double ambiance0, ambiance1, ambianceP;
    double cool, warm, brights, mid_tones;  // 1.0 is 100 per cent
    double strength, rest;                  // share of the weighed estimate, and of the plain one
    double weight, weight_per_level;        // of the backing's primary, and 1/255 of that
    double inverse_weight;
    double lack0, lack1;  // how far the secondaries stay below the primary, 0 to 255
    double darks_per_level;
    double allowance;  // levels by which the ambiance lets the primary stand out
};

SpillParams spill_params(const ControlBlock& controls);

using SuppressSpill = void(const SpillParams& params, const RolePixels& in, const float* alpha,
                           const float* pre_matte, const RoleOutput& out, std::size_t n);
LANE_KERNEL(SuppressSpill, suppress_spill);
