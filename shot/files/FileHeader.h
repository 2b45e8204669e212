// A file's header out of the metadata that it gets and of what is asked for it.
#pragma once

#include <OpenImageIO/imageio.h>

#include <string>

#include "shot/files/FileRows.h"
#include "shot/files/ImageFile.h"

namespace veloxa {

// Throws Error where the writer's format has no such compression, quality, tiles or bits.
void check_options(const std::string& path, const OIIO::ImageOutput& output, const WriteOptions& options);

// `metadata` is what goes into the file beside what is said here; its compression is kept where the format
// has it and the options name no other.
OIIO::ImageSpec header_for(OIIO::ImageSpec metadata, const FileRows& rows, const OIIO::ImageOutput& output,
                           const WriteOptions& options);

// Throws Error for a file that was opened with another sample type than the one that was asked for.
void check_type(const std::string& path, const OIIO::ImageOutput& output, const WriteOptions& options);

// Whether samples read back as they were written to the file that was opened.
bool keeps_samples(const OIIO::ImageOutput& output);

}  // namespace veloxa
