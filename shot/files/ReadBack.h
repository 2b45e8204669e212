// Whether a file that was written holds what it should.
#pragma once

#include <OpenImageIO/imageio.h>

#include <string>

#include "ZoImage/Render.h"
#include "shot/image/Image.h"

namespace veloxa {

// Reads a file back that `output` has written from the image and closed. Empty when it has the size, windows,
// channels and type that the writer opened it with, and every sample of it: the same bits, or, for formats
// that only approximate samples, any; else what is wrong. Throws Interrupted.
std::string read_back(const std::string& path, const Image& image, const OIIO::ImageOutput& output,
                      const Zo::Image::AbortFlag* abort);

}  // namespace veloxa
