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
    std::vector<std::array<double, 2>> points;  // x, y in pixels of the display window, y upward; at least 3

    friend bool operator==(const DrawnMatte&, const DrawnMatte&) = default;
};
using DrawnMattes = std::vector<DrawnMatte>;

// Those of the kind as the alpha of an image of that format, the largest of them where they overlap, over
// what `under` (may be null; of the same format) has; null where there are none of the kind. The same bits on
// every machine.
std::shared_ptr<const Image> draw(const DrawnMattes& mattes, DrawnMatte::Kind kind,
                                  const Zo::Image::Format& format, const std::shared_ptr<const Image>& under);

// As groups of a script; numbers read back to the same bits.
std::string mattes_script(const DrawnMattes& mattes);
// Those of a script's text; groups of other classes are left out. Throws Error, FILE:LINE: what is expected.
DrawnMattes read_mattes(const std::string& text, const std::string& file);

}  // namespace veloxa
