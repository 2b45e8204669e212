// Means over cells of pixels, and what lies between cells again.
#pragma once

#include <vector>

#include "framework/ParallelLoop.h"
#include "unmix/Plane.h"

namespace unmix {

// The mean of each cell of `side` x `side` pixels; cells at the far edges may have fewer.
void cell_means(const Floats& picture, int side, Floats& means, const ParallelLoop& loop);

// Linear interpolation between the middles of cells: pixels x to r - 1 of row y of a picture whose cells are
// `side` to a side. Beyond the outermost middles the outermost cell counts.
void between_cells(const Floats& cells, int side, int y, int x, int r, float* out);

}  // namespace unmix
