// Files that hold several images: parts, pages, frames.
#pragma once

#include <string>

#include "shot/Caller.h"

namespace veloxa {

// Warns of a file of which only the first image is read.
void warn_of_parts(const std::string& path, const Caller& caller);

}  // namespace veloxa
