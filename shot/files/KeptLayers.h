// What a foreground's file holds besides the channels that are keyed, as it is stored, for the file of the
// result.
//
// OpenEXR alone can hold it. Channels of the part that was read stand in the result's own part, beside R, G,
// B and A, under their names. They get a part of their own where their data window is not the result's, where
// the result's compression loses bits, and where one of them has the name of a result's channel. The file's
// other parts follow.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "ZoImage/Render.h"
#include "shot/files/FileRows.h"
#include "shot/files/PictureChoice.h"
#include "shot/files/PictureFile.h"
#include "shot/image/Image.h"

namespace veloxa {

struct KeptPart {
    // Of the kept channels alone, with a sample type for each: half, float or uint32, as in the file where it
    // has these; channels of all other types are floats. Windows are the file's.
    Header header;
    std::unique_ptr<std::byte[]> pixels;  // interleaved, row by row from the top

    std::size_t pitch() const { return header.pixel_bytes() * static_cast<std::size_t>(header.width); }
};

struct KeptLayers {
    std::vector<KeptPart> parts;  // `of_result` first, if there is one
    bool of_result = false;       // whether the first is of the part that was read
    std::string left_out;         // what cannot be kept, for people; empty for nothing
};

// Reads all that `choice` does not read. Throws as read_image does.
KeptLayers read_kept_layers(const std::string& path, const PictureChoice& choice,
                            const Zo::Image::AbortFlag* abort);

// Throws Error when the writer's format cannot hold layers.
void check_holds_layers(const std::string& path, const PictureOutput& output);

// Writes an image, whose rows these are, and what it keeps. `output` is fresh and `result` what the header of
// the image alone would be. Returns false when the writer has failed; throws Interrupted.
bool write_with_layers(PictureOutput& output, const std::string& path, const Header& result,
                       const Image& image, const FileRows& rows, const Zo::Image::AbortFlag* abort);

// Reads such a file back: what is wrong with it, empty for nothing. Samples are compared bit by bit, but for
// those of a result whose compression loses some. Throws Interrupted.
std::string layers_fault(const std::string& path, const Header& result, const Image& image,
                         const FileRows& rows, const Zo::Image::AbortFlag* abort);

}  // namespace veloxa
