// Names of OpenEXR's compressions.
#pragma once

#include <OpenEXR/ImfHeader.h>

#include <string>

#include "shot/image/Header.h"

namespace veloxa {

// "zip"; empty for one that has no name here.
std::string exr_compression_name(Imf::Compression compression);
// Sets what the attribute "compression", NAME or NAME:LEVEL, asks for.
void set_exr_compression(Imf::Header& header, const Header& from);

}  // namespace veloxa
