// For every pixel of a frame the nearest clear pixel; the first half of the smart interpolation, whose
// header says what is clear and which of equally near pixels is taken.
//
// Distances are kept in as few bytes as the frame's size allows: Steps is std::int16_t, or std::int32_t for
// frames whose width + height is beyond kMostSteps.
//
// The walk up and the walk down each give a pixel the nearest of what they met; where both are equally far
// the walk down's stands. So they are independent, and either can begin anywhere once it is known what it
// would have carried there: the frame is cut into bands of rows, which first are summed up and then walked.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "ZoImage/FramePlane.h"
#include "framework/ParallelLoop.h"
#include "screen/NearestClearKernel.h"

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
