// How far a camera that should be locked off has moved: the shift of the backing's own detail (folds, falling
// light) between two frames.
#pragma once

#include <cstdint>
#include <vector>

#include "shot/image/Image.h"

namespace veloxa {

// One channel of the clear backing in square blocks, small enough for its detail, large enough to even out
// grain.
struct BackingDetail {
    int size = 1;  // pixels to a block
    int columns = 0;
    int rows = 0;
    std::vector<double> level;  // mean of a block, NaN where it is not clear all over
};

// `clear` holds a byte for each pixel of the image's box, not 0 where the backing is clear.
BackingDetail backing_detail(const Image& image, Zo::Image::Channel channel,
                             const std::vector<std::uint8_t>& clear);

struct Shift {
    double x = 0.0;  // pixels, right and up
    double y = 0.0;
    double error = 0.0;  // standard deviation of either
    bool known = false;  // false where the frames share too little detail

    double length() const;
    // Beyond kShiftBound, and beyond what grain explains.
    bool above_bound() const;
};

inline constexpr double kShiftBound = 0.5;

// Fits a small shift and a change of light to the blocks that are clear in both, leaving out what else moved
// (the subject's shadow). Shifts beyond two blocks come out too small.
Shift shift_between(const BackingDetail& first, const BackingDetail& other);

}  // namespace veloxa
