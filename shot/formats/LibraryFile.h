// Picture files through OpenImageIO.
#pragma once

#include <memory>
#include <string>

#include "shot/files/PictureFile.h"

namespace veloxa {

// See PictureFile.h.
std::unique_ptr<PictureInput> open_with_library(const std::string& path, std::string& error);
std::unique_ptr<PictureOutput> library_writer(const std::string& path, std::string& error);

}  // namespace veloxa
