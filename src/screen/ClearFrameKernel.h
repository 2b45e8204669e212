// Evens out a span of foreground by the ratio of the clean plate to the clear frame (the evenly lit backing),
// and measures how far each pixel is from the clear frame's brightness.
//
// Colour in role order on the working scale; n pixels; outputs must not overlap inputs. Colour is capped at
// 255 and not floored; coverage is 0 where the foreground is as bright as the clear frame, 254.5 on black.
#pragma once

#include <cstddef>

#include "controls/ChannelRoles.h"
#include "lanes/LaneKernel.h"

// Whether the first pixel's clear frame is black, so that it has no coverage of its own.
inline bool clear_frame_is_black(const RolePixels& clear) {
    return clear.primary[0] + (clear.role1[0] + clear.role0[0]) == 0.0f;
}

// The coverage of a pixel whose clear frame is black and that has no pixel before it: its ratio counts as 0.
inline constexpr float kFirstCoverage = 255.0f;

// The coverage that a span's last pixel gets when the span begins at the frame's edge.
using ClearFrameLastCoverage = float(const RolePixels& fg, const RolePixels& clear, std::size_t n);
LANE_KERNEL(ClearFrameLastCoverage, clear_frame_last_coverage);

// A pixel whose clear frame is black takes the coverage of the pixel before it, the first one `before`.
using ClearFrame = void(const RolePixels& fg, const RolePixels& plate, const RolePixels& clear, float before,
                        const RoleOutput& out, float* coverage, std::size_t n);
LANE_KERNEL(ClearFrame, clear_frame);
