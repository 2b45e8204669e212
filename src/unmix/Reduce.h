// Means over cells of pixels, and what lies between cells again.
#pragma once

#include <algorithm>

#include "framework/ParallelLoop.h"
#include "unmix/Plane.h"

namespace unmix {

// The mean of each cell of `side` x `side` pixels; cells at the far edges may have fewer.
void cell_means(const Floats& picture, int side, Floats& means, const ParallelLoop& loop);

// Pixels x to r - 1 of a row of cells that are `side` pixels wide, each as its cell.
template <class T, class To>
void repeat_cells(const T* cells, int side, int x, int r, To* out) {
    for (int cell = x / side; x < r; ++cell) {
        const auto value = static_cast<To>(cells[cell]);
        for (const int end = std::min((cell + 1) * side, r); x < end; ++x) *out++ = value;
    }
}

// Linear interpolation between the middles of cells: pixels x to r - 1 of row y of a picture whose cells are
// `side` to a side, an even number. Beyond the outermost middles the outermost cell counts.
void between_cells(const Floats& cells, int side, int y, int x, int r, float* out);

}  // namespace unmix
