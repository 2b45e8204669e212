// The backing as it would look without the subject: every pixel takes the colour of a near clear pixel,
// and is then averaged over a window as wide as that pixel is far.
//
// A pixel is clear when its `clear` value is not 0 (NaN counts as clear). Distances are counted in steps
// along rows and columns; of pixels equally far the one that a walk up the frame and down again, in each
// row from the left and then from the right, meets first is kept. The averages run first along rows, then
// along columns, with sums in single precision that are carried along the whole line. Without any clear
// pixel the frame has the backing colour.
// Planes are width x height, row-major from the bottom row, and are worked on in place; beside them a pixel
// needs two to four bytes. The cost of a pixel does not depend on distances.
#pragma once

#include <array>
#include <memory>

#include "controls/Controls.h"
#include "framework/ParallelLoop.h"

struct SmartInterpolParams {
    std::array<float, 3> backing;  // red, green, blue
};

SmartInterpolParams smart_interpol_params(const ControlBlock& controls);

class SmartInterpol {
  public:
    // Throws std::length_error for frames beyond 2^28 columns and rows or 2^32 pixels.
    SmartInterpol(int width, int height);
    ~SmartInterpol();

    // Takes in the `clear` values of row y, counted from the bottom. Any thread; every row once, before run.
    void add_row(int y, const float* clear);
    // Once.
    void run(const SmartInterpolParams& params, const std::array<float*, 3>& planes,
             const ParallelLoop& loop);

  private:
    class Frame;
    template <class Steps>
    class FrameOf;
    std::unique_ptr<Frame> frame_;
};
