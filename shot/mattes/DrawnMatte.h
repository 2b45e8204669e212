// Garbage and holdout mattes drawn as polygons in the frame.
//
// They are kept in a script beside the node's group, one group each:
//
//     Matte {
//         kind garbage
//         side inside
//         feather 12
//         points {10 20 300 20.5 155 240}
//     }
//
// What is left out is as in a DrawnMatte that nobody touched; the points must be there.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "ZoImage/Info.h"
#include "shot/image/Image.h"

namespace veloxa {

struct DrawnMatte {
    enum class Kind { kGarbage, kHoldout };

    Kind kind = Kind::kGarbage;
    bool outside = false;  // what lies outside of the polygon counts, not what lies inside
    double feather = 0.0;  // pixels over which it fades from 1 to 0, half of them on either side of the line
    // Finite x, y in pixels of the display window, y upward; they may lie outside of it. At least 3. Where
    // the outline crosses itself, what it goes around twice is outside.
    std::vector<std::array<double, 2>> points;

    friend bool operator==(const DrawnMatte&, const DrawnMatte&) = default;
};
using DrawnMattes = std::vector<DrawnMatte>;

// Whether it is one of the kind, and has the points.
inline bool is_drawn(const DrawnMatte& matte, DrawnMatte::Kind kind) {
    return matte.kind == kind && matte.points.size() > 2;
}
// Those of the kind as the alpha of an image of that format, the largest of them where they overlap, over
// what `under` (may be null; of the same format) has; null where there are none of the kind, for which one of
// fewer than three points does not count.
//
// A pixel's value falls evenly with the distance of its middle from the outline, over the feather, and over
// one pixel where that is less: so edges are smooth without a feather, too. The same bits on every machine.
// The data window is the display window, and that of `under`. Any thread.
std::shared_ptr<const Image> draw(const DrawnMattes& mattes, DrawnMatte::Kind kind,
                                  const Zo::Image::Format& format, const std::shared_ptr<const Image>& under);

// As groups of a script; numbers read back to the same bits. Those of fewer than three points are left out.
std::string mattes_script(const DrawnMattes& mattes);
// Those of a script's text; groups of other classes are left out. Throws Error, FILE:LINE: what is expected.
DrawnMattes read_mattes(const std::string& text, const std::string& file);

}  // namespace veloxa
