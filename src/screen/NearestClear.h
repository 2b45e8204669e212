// For every pixel of a frame the nearest clear pixel; the first half of the smart interpolation, whose
// header says what is clear and which of equally near pixels is taken.
#pragma once

#include <cstdint>
#include <memory>

#include "framework/ParallelLoop.h"

struct NearestClear {
    bool any = false;                          // false: no pixel is clear, and there are no sources
    std::unique_ptr<std::int32_t[]> distance;  // steps; width + height when no pixel is clear
    std::unique_ptr<std::uint32_t[]> source;   // index of the pixel in the frame
};

NearestClear find_nearest_clear(int width, int height, const float* clear, const ParallelLoop& loop);
