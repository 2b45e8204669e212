// A file's header out of the metadata that it gets and of what is asked for it.
#pragma once

#include <string>

#include "shot/files/FileRows.h"
#include "shot/files/ImageFile.h"
#include "shot/files/PictureFile.h"

namespace veloxa {

// Throws Error where the writer's format has no such compression, quality, tiles or bits.
void check_options(const std::string& path, const PictureOutput& output, const WriteOptions& options);

// `metadata` is what goes into the file beside what is said here; its compression is kept where the format
// has it and the options name no other.
Header header_for(Header metadata, const FileRows& rows, const PictureOutput& output,
                  const WriteOptions& options);

// Throws Error for a file that was opened with another sample type than the one that was asked for.
void check_type(const std::string& path, const PictureOutput& output, const WriteOptions& options);

// Whether samples read back as they were written to the file that was opened.
bool keeps_samples(const PictureOutput& output);

}  // namespace veloxa
