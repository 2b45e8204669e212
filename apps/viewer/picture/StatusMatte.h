// How clean a matte is: what is exactly 0, exactly 1 and between, and where that is a fault.
#pragma once

#include <cstdint>

#include "shot/image/Image.h"

namespace veloxa::viewer {

struct StatusCounts {
    std::int64_t clear = 0;    // exactly 0
    std::int64_t solid = 0;    // exactly 1
    std::int64_t between = 0;  // above 0 and below 1
    std::int64_t beyond = 0;   // below 0, above 1
    std::int64_t broken = 0;   // NaN
    // Of those between, far from any edge: up to one half with no value above it near by, and above one half
    // with none up to it near by. Near is within kEdgeReach pixels in a column and in a row.
    std::int64_t leaks = 0;
    std::int64_t holes = 0;
};

inline constexpr int kEdgeReach = 8;

// Of the image's alpha; a channel that is absent counts as 0. Any thread.
StatusCounts status_counts(const Image& image);

}  // namespace veloxa::viewer
