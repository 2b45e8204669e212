// Clean-up of a span: a matte that is nearly full backing is pushed the rest of the way, and the colour left
// there fades in proportion.
//
// Colour and matte on the working scale (matte 255 = full backing); n pixels; outputs must not overlap
// inputs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct CleanupParams {
    float threshold;  // mattes up to here stay as they are
    double strength;  // 1.0 is 100 per cent
};

inline CleanupParams cleanup_params(const ControlBlock& controls) {
    return {static_cast<float>(controls.get(controls::kCleanUpRecover)),
            controls.get(controls::kCleanUp) / 100.0};
}

using CleanupColour = void(const CleanupParams& params, const float* matte, const float* colour, float* out,
                           std::size_t n);
LANE_KERNEL(CleanupColour, cleanup_colour);
using CleanupMatte = void(const CleanupParams& params, const float* matte, float* out, std::size_t n);
LANE_KERNEL(CleanupMatte, cleanup_matte);
