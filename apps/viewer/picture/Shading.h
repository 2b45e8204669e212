// A picture as the screen shows it: the one place where floats become bytes for the eye.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "ZoImage/StatusColour.h"
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
    // The picture's own; empty: the image's times the scale. A stand-in's last pixels are cut off there.
    Zo::Image::Box frame;
};

// What the area shows of the picture. Each device pixel shows the picture's pixel under its middle; zoomed
// out by more than half, the mean of those under it. In the frame, beyond the picture's pixels, all channels
// are 0; outside of both it is kSurround. Reads the visible part alone. Any thread; `threads` of its own
// help.
//
// Colour, in this order: what lies behind, in stored values, shows by 1 - alpha (a picture without alpha is
// solid); gain; gamma; the display; the overlay, a colour of the screen, mixed in by alpha times its
// strength. A channel alone, or the luminance of Rec.709's weights, is grey, with nothing behind; alpha does
// not go through the display. Above 1 is as 1, below 0 and NaN as 0. False colours replace a pixel wherever a
// stored sample under it, of the channels shown, is beyond; NaN goes before infinite, above, below.
Shaded shade(const ShownPicture& picture, const View& view, const DisplayTransform& display,
             const Geometry& geometry, int threads = 1);

inline constexpr std::uint32_t kSurround = 0xff262626;
using Zo::Image::kFalseAbove;
using Zo::Image::kFalseBelow;
using Zo::Image::kFalseNan;
inline constexpr std::uint32_t kFalseInfinite = 0xffffff00;  // yellow

// Squares of device pixels, in two greys that are stored values as a picture's.
inline constexpr int kCheckerSide = 16;
inline constexpr std::array<float, 2> kCheckerGreys{0.2f, 0.4f};

// |a - b| * gain of each channel that either has, alpha too; beyond their pixels, and where a channel is
// absent, they count as 0. Throws Error for frames of two sizes.
Image difference(const Image& a, const Image& b, float gain);

}  // namespace veloxa::viewer
