// Pixels in the host's memory, and the keyer's floats.
//
// The values of the samples are those of ZoImage/Samples.h.
#pragma once

#include <array>
#include <cstddef>

#include "ZoImage/Box.h"
#include "pixels/PixelsKernel.h"

namespace veloxa::ofx {

struct PixelView {
    std::byte* data = nullptr;     // the bottom left pixel of the bounds; null for no image
    Zo::Image::Box bounds;         // the pixels that are there
    std::ptrdiff_t row_bytes = 0;  // from a row to the one above; may be negative
    SampleDepth depth = SampleDepth::kFloat;
    int components = 4;  // 4: red, green, blue, alpha; 3: red, green, blue; 1: alpha

    bool empty() const { return data == nullptr || bounds.empty(); }
};

// Reads row y, columns x to r - 1: each of the pixel's components, in their order, to the place given for it;
// null leaves it out. Beyond the bounds the nearest pixel repeats. The view must not be empty.
void read_row(const PixelView& view, int y, int x, int r, const std::array<float*, 4>& out);

// Writes row y, columns x to r - 1, all inside the bounds. `rgba` points at column x of each channel; a view
// of three components drops alpha, one of one component takes only that.
void write_row(const PixelView& view, int y, int x, int r, const std::array<const float*, 4>& rgba);

// Makes pixels 0, all inside the bounds.
void clear_row(const PixelView& view, int y, int x, int r);

}  // namespace veloxa::ofx
