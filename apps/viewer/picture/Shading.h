// A picture as the screen shows it: the one place where floats become bytes for the eye.
#pragma once

#include <cstdint>
#include <vector>

#include "picture/DisplayTransform.h"
#include "picture/Geometry.h"
#include "picture/View.h"
#include "shot/image/Image.h"

namespace veloxa::viewer {

// Rows from the top, 0xffRRGGBB.
struct Shaded {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

// A picture, or a smaller stand-in for it: pixel (x, y) of `image` covers columns x * scale to (x + 1) *
// scale of the picture, rows likewise.
struct ShownPicture {
    std::shared_ptr<const Image> image;
    double scale = 1.0;
};

// What the area shows of the picture. Each device pixel shows the picture's pixel under its middle; zoomed
// out by more than half, the mean of those under it. Outside the picture's pixels and its frame it is
// kSurround. Reads the visible part alone. Any thread; `threads` of its own help.
Shaded shade(const ShownPicture& picture, const View& view, const DisplayTransform& display,
             const Geometry& geometry, int threads = 1);

// |a - b| * gain of two pictures of one size, alpha too.
Image difference(const Image& a, const Image& b, float gain);

inline constexpr std::uint32_t kSurround = 0xff262626;

}  // namespace veloxa::viewer
