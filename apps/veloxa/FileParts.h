// Files that hold several images: parts, pages, frames.
#pragma once

#include <string>

namespace veloxa {

// What to tell about a file of which only the first image is read; empty for a file with one.
std::string parts_warning(const std::string& path);

}  // namespace veloxa
