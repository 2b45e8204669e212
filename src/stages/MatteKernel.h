// The colour-difference matte of a span: how much of the backing shows through each pixel.
//
// Colour in role order on the working scale 0 to 255; the matte is 255 on pure backing, 0 and below on
// solid subject, down to -32512.5. All pointers address n floats; the output must not overlap the inputs.
#pragma once

#include <cstddef>

#include "controls/ControlBlock.h"
#include "lanes/LaneKernel.h"
#include "stages/ChannelRoles.h"

struct MatteParams {
    float backing0, backing1, backingP;  // backing level of role 0, role 1, primary; constant backing only
    double brights, darks, cool, warm;   // 1.0 is 100 per cent
};

MatteParams matte_params(const ControlBlock& controls);

// Against one backing colour for the whole frame.
using MatteConstant = void(const MatteParams& params, const RolePixels& fg, float* matte, std::size_t n);
extern const LaneKernel<MatteConstant> matte_constant;

// Against a clean plate, pixel by pixel; the backing levels of the parameters are not used.
using MatteCleanPlate = void(const MatteParams& params, const RolePixels& fg, const RolePixels& plate,
                             float* matte, std::size_t n);
extern const LaneKernel<MatteCleanPlate> matte_clean_plate;
