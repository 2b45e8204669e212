// Lengths and reduced grids of a frame. Lengths of the unmixing matte are pixels of a frame 1080 high; grids
// are coarser on larger frames, so that work grows no faster than pixels do.
#pragma once

#include <algorithm>
#include <cmath>

namespace unmix {

struct FrameScale {
    FrameScale() = default;
    FrameScale(int frame_width, int frame_height)
        : width(frame_width),
          height(frame_height),
          pixels(static_cast<float>(std::min(frame_width, frame_height)) / 1080.0f),
          step(std::max(1, static_cast<int>(std::lround(pixels)))) {}

    int width = 0;  // of the frame
    int height = 0;
    float pixels = 1.0f;  // that a length of 1 takes
    int step = 1;

    int fine() const { return 2 * step; }    // pixels to a side of a cell of the fine grid
    int coarse() const { return 4 * step; }  // and of the coarse grid
    int cells_across(int cell) const { return (width + cell - 1) / cell; }
    int cells_up(int cell) const { return (height + cell - 1) / cell; }
};

}  // namespace unmix
