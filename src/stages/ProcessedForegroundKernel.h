// Takes the backing's share out of a span of foreground, and makes its opacity.
//
// Colour in role order and matte on the working scale 0 to 255; the matte is 255 on pure backing. Results
// are clamped to 0..255. A pixel whose pre-matte is not 0 is certain backing and becomes 0 throughout; one
// whose matte is 0, negative or NaN keeps its colour and is opaque.
// All pointers address n floats; outputs overlap no input.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct VeilParams {
    double share0, share1, shareP;  // part of the backing to take out where the matte is full; 1.0 is all
    double backing0, backing1, backingP;  // its level; constant backing only
    bool use_pre_matte;                   // constant backing only: a clean plate always uses it
};

inline VeilParams veil_params(const ControlBlock& controls) {
    const ControlTriple veiling = controls.get(controls::kBgVeiling);
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto level = [&](std::size_t role) {
        return static_cast<double>(static_cast<float>(backing[role]));
    };
    return {veiling[0] / 100.0,
            veiling[1] / 100.0,
            veiling[2] / 100.0,
            level(0),
            level(1),
            level(2),
            controls.get(controls::kScreenCorrect) != 0};
}

struct VeilMattes {
    const float* matte;
    const float* pre_matte;
};

// Against one backing colour for the whole frame.
using UnveilConstant = void(const VeilParams& params, const RolePixels& fg, const VeilMattes& mattes,
                            const RoleOutput& out, float* alpha, std::size_t n);
LANE_KERNEL(UnveilConstant, unveil_constant);

// Against a clean plate, pixel by pixel.
using UnveilCleanPlate = void(const VeilParams& params, const RolePixels& fg, const RolePixels& plate,
                              const VeilMattes& mattes, const RoleOutput& out, float* alpha, std::size_t n);
LANE_KERNEL(UnveilCleanPlate, unveil_clean_plate);
