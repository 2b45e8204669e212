#include "shot/movie/StreamReader.h"

#include <utility>

#include "shot/files/Formats.h"

namespace veloxa {

StreamReader::StreamReader(int file, std::string name, int first, const Zo::Image::AbortFlag* abort)
    : decoder_(formats().decoder(file, std::move(name), first, abort)) {}

}  // namespace veloxa
