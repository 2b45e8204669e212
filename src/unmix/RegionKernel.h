// Rows of a rough opacity. Channels come as the screen's, then the others; arrays have n values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "lanes/LaneKernel.h"

struct RoughRows {
    float* lead;          // what the plate's screen channel has beyond the others
    float* backing_lead;  // the same of the backing, at least a little
    float* bound;  // the opacity below which the subject would be darker than black or brighter than white
};
using RoughLeads = void(const std::array<const float*, 3>& plate, const std::array<const float*, 3>& backing,
                        const RoughRows& out, std::size_t n);
LANE_KERNEL(RoughLeads, rough_leads);

// `own` is what the subject's own colour leads by; from -backing_lead to 0 of it counts.
using RoughOpacity = void(const RoughRows& rows, const float* own, float* rough, std::size_t n);
LANE_KERNEL(RoughOpacity, rough_opacity);

// 1 where v is above the limit, else 0.
using Above = void(const float* v, float limit, std::uint8_t* out, std::size_t n);
LANE_KERNEL(Above, above);
