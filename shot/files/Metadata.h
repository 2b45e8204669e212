// Which of a foreground's metadata goes into a file that is made from it.
#pragma once

#include <string>

#include "shot/files/PictureFile.h"

namespace veloxa {

// Some writers make a broken file of metadata that others take; then a file with less of it is tried.
enum class Metadata { kAll, kPlain, kNone };

// Removes what describes how the foreground was stored, and what is not to be kept: for kPlain what cameras
// and cataloguing programs put in blocks of their own (Exif, GPS, IPTC, XMP, colour profiles). Returns the
// names of what was removed on account of `kept`, empty for nothing.
std::string keep_metadata(Header& header, Metadata kept);

// Whether a writer can be given this metadata. JPEG holds each block of it in a segment of less than 64 KB,
// and when one is longer libjpeg ends the program.
bool fits(const Header& header, const PictureOutput& output);

}  // namespace veloxa
