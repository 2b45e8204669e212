// The backing as it would look without the subject: every pixel takes the colour of a near clear pixel,
// and is then averaged over a window as wide as that pixel is far.
//
// A pixel is clear when its `clear` value is not 0 (NaN counts as clear). Distances are counted in steps
// along rows and columns; of pixels equally far the one that a walk up the frame and down again, in each
// row from the left and then from the right, meets first is kept. The averages run first along rows, then
// along columns, with sums in single precision that are carried along the whole line. Without any clear
// pixel the frame has the backing colour.
// Planes are width x height, row-major from the bottom row; `out` must not overlap the others. The cost of
// a pixel does not depend on distances. Throws std::length_error for frames beyond 2^28 columns and rows
// or 2^32 pixels.
#pragma once

#include <array>

#include "controls/ControlBlock.h"
#include "framework/ParallelLoop.h"

struct SmartInterpolParams {
    std::array<float, 3> backing;  // red, green, blue
};

SmartInterpolParams smart_interpol_params(const ControlBlock& controls);

void smart_interpol(const SmartInterpolParams& params, int width, int height, const float* clear,
                    const std::array<const float*, 3>& image, const std::array<float*, 3>& out,
                    const ParallelLoop& loop);
