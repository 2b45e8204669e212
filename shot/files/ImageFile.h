// Reading and writing image files of any format that OpenImageIO knows. No colour is converted and no alpha
// multiplied: samples are as stored.
#pragma once

#include <string>

#include "ZoImage/Render.h"
#include "shot/Caller.h"
#include "shot/files/PictureChoice.h"
#include "shot/files/Provenance.h"
#include "shot/image/Image.h"

namespace veloxa {

// Reads the part, layer and view that the choice names, else those that come first; see PictureParts.h.
// Channels are found by the names R, G, B and A, else by their order; one colour channel fills red, green and
// blue; other channels are left out. Throws Error when the file is missing, is no image, is not whole or has
// not what was chosen, UsageError for a choice that inverts, and Interrupted when the flag was raised on the
// way. `choice.space` is the caller's.
Image read_image(const std::string& path, const PictureChoice& choice = {},
                 const Zo::Image::AbortFlag* abort = nullptr);

// The same for a matte: a layer without alpha supplies its first channel as alpha. Inverted, it is 1 - value.
Image read_matte(const std::string& path, const PictureChoice& choice = {},
                 const Zo::Image::AbortFlag* abort = nullptr);

// The UsageError of a colour input whose choice inverts.
[[noreturn]] void refuse_invert(const std::string& path);

// Throws Error where the file can be opened and has not what was chosen, or leaves the choice open.
void check_choice(const std::string& path, const PictureChoice& choice, bool matte);

// The name of the alpha channel that a file has beside others, from the header that was read by the choice;
// empty without one.
std::string own_alpha(const Header& header, const PictureChoice& choice = {});

// Warns of parts, layers or views that the choice did not decide between, and says how to choose.
void warn_of_parts(const std::string& path, const PictureChoice& choice, bool matte, const Caller& caller);

// Whether the file is there and every pixel of all its parts can be read.
bool is_whole_image(const std::string& path, const Zo::Image::AbortFlag* abort = nullptr);

// The fingerprint that a file holds; empty without one. Throws Error where its header cannot be read.
std::string fingerprint_in(const std::string& path);

// The type of a file's samples: half, float, uint8 or uint16.
using Depth = OIIO::TypeDesc;

// What an image's alpha is to its colour, for formats that keep alpha apart from colour, as PNG does.
enum class Alpha {
    kAsStored,       // not known: both are written as they are
    kOpaque,         // a key that the colour does not need: left out
    kPremultiplied,  // colour is multiplied by it: divided
    kStraight,       // it is not: kept
};

struct WriteOptions {
    Depth depth{};  // unknown: half in OpenEXR, float in RLA, else up to 16-bit integers
    int bits = 0;   // of an integer sample where fewer than its type's: 10 or 12, in DPX and TIFF
    Alpha alpha = Alpha::kAsStored;
    std::string compression{};  // NAME or NAME:LEVEL; empty for the metadata's, or the format's usual one
    int quality = 0;            // 1 to 100 of JPEG, WebP and HEIF; 0 for the library's
    int tile_width = 0;         // 0 for rows
    int tile_height = 0;
    Provenance made_by{};
    bool overwrite = false;
    const Zo::Image::AbortFlag* abort = nullptr;
    bool layers = false;  // images keep layers; see KeptLayers.h
};

// "half", "float", "uint8", "uint10", "uint12" or "uint16"; empty for unknown. Throws UsageError for others.
void set_depth(WriteOptions& options, const std::string& name);

// Whether a file of that name keeps alpha beside colour. Throws Error without a writer.
bool keeps_alpha(const std::string& path, const WriteOptions& options);

// Whether such a file holds the fingerprint of its provenance. Throws Error without a writer.
bool keeps_fingerprint(const std::string& path, const WriteOptions& options);

// Throws Error when no writer answers to the file's extension, when the format cannot hold what the options
// ask for, or when the file cannot be made there; so that a mistake shows before any frame is rendered.
void check_writable(const std::string& path, const WriteOptions& options);

// Writes the present channels with the header's metadata, and the layers that the image keeps. The file
// appears under its name when it has been read back, header and pixels, and not before. OpenEXR keeps both
// windows; other formats get the display window, black where there are no pixels. Integers are clamped to
// their range and rounded to nearest; NaN becomes 0.
//
// Returns what metadata was left out because the file could not be read back with it; see Metadata.h.
std::string write_image(const std::string& path, const Image& image, const WriteOptions& options);

// What to tell about metadata that write_image left out of a file.
std::string left_out_warning(const std::string& path, const std::string& left_out);

}  // namespace veloxa
