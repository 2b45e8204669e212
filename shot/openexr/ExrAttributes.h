// Attributes of OpenEXR's headers under the names that the image library gives them for every format.
#pragma once

#include <OpenEXR/ImfHeader.h>

#include <string>

#include "shot/image/Header.h"

namespace veloxa {

// What the file has beside windows, channels and tiles. Attributes of types that have no other are left out.
void take_attributes(const Imf::Header& from, Header& to);

// The other way round; the result has all but channels, tiles and type. What only describes other formats'
// files and what OpenEXR cannot hold is left out; the time is now where none is given.
Imf::Header exr_header(const Header& from);

}  // namespace veloxa
