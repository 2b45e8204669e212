// How a file's values stand for light, by what is known without looking at its pixels.
#pragma once

#include <string>

#include "shot/image/Header.h"

namespace veloxa {

struct EncodingGuess {
    std::string name;  // an item of the knob "unmix_encoding"
    std::string why;
};

// By its colour space (shot/colour/FileSpace.h): the curve of sRGB or one like it, the density of film;
// everything else is taken for light as it is stored, a camera's logarithm too, which is to be converted.
EncodingGuess guess_encoding(const Header& header, const std::string& file);

}  // namespace veloxa
