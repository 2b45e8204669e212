// The colour-difference matte of a span: how much of the backing shows through each pixel.
//
// Colour in role order on the working scale 0 to 255; the matte is 255 on pure backing, 0 and below on
// solid subject, down to -32512.5. All pointers address n floats; the output must not overlap the inputs.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct MatteParams {
    float backing0, backing1, backingP;  // backing level of role 0, role 1, primary; constant backing only
    double brights, darks, cool, warm;   // 1.0 is 100 per cent
};

inline MatteParams matte_params(const ControlBlock& controls) {
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {static_cast<float>(backing[0]),        static_cast<float>(backing[1]),
            static_cast<float>(backing[2]),        percent(controls::kMatteDensityBrights),
            percent(controls::kMatteDensityDarks), percent(controls::kMatteDensityCool),
            percent(controls::kMatteDensityWarm)};
}

// Against one backing colour for the whole frame.
using MatteConstant = void(const MatteParams& params, const RolePixels& fg, float* matte, std::size_t n);
LANE_KERNEL(MatteConstant, matte_constant);

// Against a clean plate, pixel by pixel; the backing levels of the parameters are not used.
using MatteCleanPlate = void(const MatteParams& params, const RolePixels& fg, const RolePixels& plate,
                             float* matte, std::size_t n);
LANE_KERNEL(MatteCleanPlate, matte_clean_plate);
