// Finds out whether a PNG file is whole.
#pragma once

#include <string>

namespace veloxa {

// True when the file is no PNG, or is one whose chunks reach to its end chunk. The library that decodes PNG
// prints to standard error when a chunk is cut off, and never looks at what follows the last pixel.
bool png_is_whole(const std::string& path);

}  // namespace veloxa
