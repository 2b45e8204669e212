// How a picture is shown: what of it, over what, how bright. Nothing here changes what is keyed.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "shot/image/Image.h"

namespace veloxa::viewer {

enum class Channels { kColour, kRed, kGreen, kBlue, kAlpha, kLuminance };

// What lies behind a picture whose colour is premultiplied by its alpha.
enum class Behind { kNothing, kBlack, kChecker, kColour, kPicture };

struct View {
    Channels channels = Channels::kColour;
    bool overlay = false;  // alpha as a tint over the colour
    // Red, green and blue as the screen shows them; how strong it is where alpha is 1.
    std::array<float, 4> overlay_colour{1.0f, 0.0f, 0.0f, 0.5f};
    Behind behind = Behind::kNothing;
    std::array<float, 3> behind_colour{0.5f, 0.5f, 0.5f};  // as stored in the picture
    std::shared_ptr<const Image> behind_picture;           // for kPicture; black where it is null
    bool status = false;         // the status matte instead of all the above; see StatusMatte.h
    float gain = 1.0f;           // on stored values, before the display's curve
    float gamma = 1.0f;          // after the gain: value to the power of 1 / gamma, the sign kept
    bool false_colours = false;  // marks samples beyond 1, below 0, infinite and NaN
};

}  // namespace veloxa::viewer
