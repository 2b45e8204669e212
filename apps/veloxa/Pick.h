// Samples a colour from a box of an image.
#pragma once

#include <array>
#include <string>

#include "ImageFile.h"

namespace veloxa {

// Reads "X,Y,R,T": columns X to R - 1, rows Y to T - 1 from the bottom. Throws UsageError.
Zo::Image::Box parse_box(const std::string& text);

// The mean red, green and blue over the box, which must lie in the display window (else UsageError); beyond
// the data window its edge pixels repeat. Throws Error when the mean is not finite.
std::array<double, 3> mean_color(const Image& image, const Zo::Image::Box& box);

}  // namespace veloxa
