// OpenEXR's files through its own library: parts, tiles, all its compressions, the first level of those with
// several resolutions. Deep parts have a header and no pixels that can be read.
#pragma once

#include <memory>
#include <string>

#include "shot/files/PictureFile.h"

namespace veloxa {

bool is_exr(const std::string& path);  // by its first bytes
bool has_exr_extension(const std::string& path);
std::unique_ptr<PictureInput> open_exr(const std::string& path, std::string& error);
std::unique_ptr<PictureOutput> exr_writer();

// 0 for all processors. Before other threads work with files.
void set_exr_threads(int threads);

}  // namespace veloxa
