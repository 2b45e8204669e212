// Evens out a span of foreground by the ratio of the clean plate to the clear frame (the evenly lit backing),
// and measures how far each pixel is from the clear frame's brightness.
//
// Colour in role order on the working scale; n pixels; outputs must not overlap inputs. Colour is capped at
// 255 and not floored; coverage is 0 where the foreground is as bright as the clear frame, 254.5 on black.
#pragma once

#include <cstddef>

#include "stages/ChannelRoles.h"

// Whether the first pixel has no ratio of its own.
bool clear_frame_is_black(const RolePixels& clear);

// The brightness ratio of the last pixel whose clear frame is not black; `before` when there is none. A
// pixel whose clear frame is black takes the ratio of the one before it.
double clear_frame_last_ratio(const RolePixels& fg, const RolePixels& clear, std::size_t n, double before);

// `before` is the ratio that the pixel left of the span had, 0 at the frame's edge.
void clear_frame(const RolePixels& fg, const RolePixels& plate, const RolePixels& clear, double before,
                 const RoleOutput& out, float* coverage, std::size_t n);
