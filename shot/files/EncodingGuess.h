// How a file's values stand for light, by what is known without looking at its pixels.
#pragma once

#include <OpenImageIO/imageio.h>

#include <string>

namespace veloxa {

struct EncodingGuess {
    std::string name;  // an item of the knob "unmix_encoding"
    std::string why;
};

// DPX and Cineon are logarithmic, whole numbers of 8 or 16 bits sRGB, unless the file says otherwise;
// everything else is light as it is stored.
EncodingGuess guess_encoding(const OIIO::ImageSpec& header, const std::string& file);

}  // namespace veloxa
