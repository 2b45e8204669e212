// What colour space a file's values are in, as far as its header and its name say, and saying it in a header.
#pragma once

#include <string>
#include <string_view>

#include "shot/colour/KnownSpaces.h"
#include "shot/image/Header.h"

namespace veloxa {

struct FileSpace {
    std::string name;        // of a known space, or what an earlier key wrote there
    std::string why;         // "uint8 without a linear tag"
    bool sure = false;       // the format or a tag says so; else it is what such files usually are
    bool primaries = false;  // those of the space are the file's, too
};

// By what Veloxa wrote there, an ICC profile's name, OpenEXR's chromaticities, the format's own tag, else the
// sample type: whole numbers are sRGB, or film's density in DPX; floats are light. Looks at no pixel.
FileSpace space_of(const Header& header, const std::string& file);

// Says in the header what space its image's values are in now; what said otherwise goes. The reason stays in
// memory. `known` may be null; its primaries are told as chromaticities where there are `primaries`.
void tag_space(Header& header, const FileSpace& space, const KnownSpace* known);
// The same for values that were converted from another space.
void tag_converted(Header& header, const std::string& from, const std::string& to, const KnownSpace* known);
// What they were converted from at first; empty for those that were not.
std::string first_space(const Header& header);
// For values that are no colour: mattes, an operator's rows.
void tag_raw(Header& header);

// Turns what tag_space says into what the format's writer understands. JPEG and TIFF can say no more than
// that the values are not sRGB, or hold a profile; formats without any tag say nothing.
void tag_for_format(Header& spec, std::string_view format);

}  // namespace veloxa
