// For every pixel of a frame the nearest clear pixel; the first half of the smart interpolation, whose
// header says what is clear and which of equally near pixels is taken.
//
// Distances are kept in as few bytes as the frame's size allows: Steps is std::int16_t, or std::int32_t for
// frames with a longer side than kMostSteps.
//
// The walk up and the walk down each give a pixel the nearest of what they met; where both are equally far
// the walk down's stands. So they are independent, and either can begin anywhere once it is known what it
// would have carried there: the frame is cut into bands of rows, which first are summed up and then walked.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "ZoImage/FramePlane.h"
#include "framework/ParallelLoop.h"
#include "lanes/LaneKernel.h"

// Stands for the distance where a row has no clear pixel.
template <class Steps>
inline constexpr Steps kNoSteps = sizeof(Steps) == 2 ? 30000 : 1 << 30;
// The longest width + height; leaves a band's rows below kNoSteps.
template <class Steps>
inline constexpr Steps kMostSteps = sizeof(Steps) == 2 ? 29000 : 1 << 29;

template <class Steps>
class NearestClear {
  public:
    NearestClear(int width, int height);

    // Takes in a row. Any thread, every row once, before fill.
    void add_row(int y, const float* clear);

    // Gives every pixel of the planes that is not clear the nearest clear one's values, or the backing
    // if none is clear.
    void fill(const std::array<float*, 3>& planes, const std::array<float, 3>& backing,
              const ParallelLoop& loop);

    // After fill: steps to the nearest clear pixel; width + height when none is clear.
    const Steps* distance() const { return steps_.data(); }

  private:
    struct Carried;
    void fill_backing(const std::array<float*, 3>& planes, const std::array<float, 3>& backing,
                      const ParallelLoop& loop);

    int width_;
    int height_;
    std::atomic<bool> any_{false};
    // Before fill the column of the row's nearest clear pixel less the pixel's own column.
    Zo::Image::FramePlane<Steps> steps_;
};

// Columns and rows that are walked at once.
inline constexpr int kWalkColumns = 128;
inline constexpr int kWalkRows = 64;

// What a walk has met so far, per column: the distance, and the column of the clear pixel less its own.
template <class Steps>
struct Met {
    Steps* distance;
    Steps* offset;
};

// Columns [0, columns) and rows [0, rows) of a band; pointers are to its first pixel.
template <class Steps>
struct WalkTile {
    int columns;
    int rows;
    std::ptrdiff_t width;  // of the frame
    Steps farthest;
    Steps* steps;
    Met<Steps> up;    // met below the band
    Met<Steps> down;  // met above the band
    float* planes[3];
};

// Per pixel of a row the column of its nearest clear pixel, of equally near ones the left, less its own.
// Returns whether the row has one.
template <class Steps>
using FindInRow = bool(const float* clear, std::ptrdiff_t width, Steps* offset);
// Leaves in `up` and `down` what walks over the band alone have met at its last row and its first.
template <class Steps>
using SumUpWalks = void(const WalkTile<Steps>& tile);
// Walks the band; turns its steps to distances and fills its pixels.
template <class Steps>
using WalkAndFill = void(const WalkTile<Steps>& tile);

extern const LaneKernel<FindInRow<std::int16_t>> find_in_row_16;
extern const LaneKernel<FindInRow<std::int32_t>> find_in_row_32;
extern const LaneKernel<SumUpWalks<std::int16_t>> sum_up_walks_16;
extern const LaneKernel<SumUpWalks<std::int32_t>> sum_up_walks_32;
extern const LaneKernel<WalkAndFill<std::int16_t>> walk_and_fill_16;
extern const LaneKernel<WalkAndFill<std::int32_t>> walk_and_fill_32;
