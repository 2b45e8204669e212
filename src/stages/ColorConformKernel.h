// Conforms a span of colour: a tone curve for each role, then a turn in a logarithmic hue, saturation and
// value space.
//
// Colour in role order and alpha (opacity) on the working scale 0 to 255; results are clamped to 0..255.
// A transparent pixel holds only part of its colour, so its curve is shifted by what is missing.
// Arithmetic in double. All pointers address n floats; the outputs overlap no input.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "controls/ControlBlock.h"
#include "lanes/LaneKernel.h"

struct ToneCurve {
    double low;    // input level, 0 to 1, that becomes black
    double width;  // from there to the one that becomes white
    double bend;   // 1 is straight
    double grey;   // what the curve makes of 0.5
};

struct ConformParams {
    ToneCurve curve0, curve1, curveP;  // role 0, role 1, primary
    bool adjust;                       // whether any of the three below says something
    double hue;                        // sextants of the hue circle to turn by
    double saturation;                 // factor
    double value;                      // logarithmic levels to add, 0 to 1
};

ConformParams conform_params(const ControlBlock& controls);

using ConformColour = void(const ConformParams& params, const RolePixels& in, const float* alpha,
                           const RoleOutput& out, std::size_t n);
LANE_KERNEL(ConformColour, conform_colour);
