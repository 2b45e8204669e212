// Boxes that the command line gives, and the colour in one.
#pragma once

#include <array>
#include <string>

#include "shot/image/Image.h"

namespace veloxa {

// Reads "X,Y,R,T": columns X to R - 1, rows Y to T - 1 from the bottom. Throws UsageError, which begins with
// the name of the option.
Zo::Image::Box parse_box(const std::string& option, const std::string& text);

// Throws UsageError unless the box lies in the image's display window.
void check_inside(const std::string& option, const Image& image, const Zo::Image::Box& box);

// The mean red, green and blue over the box of --pick; beyond the data window its edge pixels repeat. Throws
// UsageError as check_inside does, Error when the mean is not finite.
std::array<double, 3> mean_color(const Image& image, const Zo::Image::Box& box);

}  // namespace veloxa
