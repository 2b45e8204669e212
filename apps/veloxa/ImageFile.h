// Reading and writing image files of any format that OpenImageIO knows.
//
// Pixels are planar floats, bottom row first. File rows count downward; here row 0 is the bottom row of the
// file's display window and column 0 its left column, so y = (display bottom row) - (file row) and
// x = (file column) - (display left column). The data window becomes the box, which may reach beyond the
// display window or not fill it. No colour is converted and no alpha multiplied: samples are as stored.
#pragma once

#include <OpenImageIO/imageio.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Plane.h"
#include "ZoImage/Info.h"
#include "ZoImage/Render.h"

namespace veloxa {

struct Image {
    Image() = default;
    // An image of the given channels (of red, green, blue, alpha) with undefined pixels.
    explicit Image(const Zo::Image::Info& info);

    std::size_t width() const { return static_cast<std::size_t>(info.box.width()); }
    std::size_t height() const { return static_cast<std::size_t>(info.box.height()); }
    bool has(Zo::Image::Channel c) const { return plane(c) != nullptr; }
    Plane& plane(Zo::Image::Channel c) { return planes[static_cast<std::size_t>(c - Zo::Image::kRed)]; }
    const Plane& plane(Zo::Image::Channel c) const {
        return planes[static_cast<std::size_t>(c - Zo::Image::kRed)];
    }
    // Row y (inside the box) of a channel that is present, from column info.box.x on.
    float* line(Zo::Image::Channel c, int y) { return plane(c).get() + offset(y); }
    const float* line(Zo::Image::Channel c, int y) const { return plane(c).get() + offset(y); }

    Zo::Image::Info info;         // the format's box starts at 0, 0
    std::array<Plane, 4> planes;  // null for a channel that is absent
    OIIO::ImageSpec header;       // the file's metadata and windows; the default one for a new image

  private:
    std::size_t offset(int y) const { return static_cast<std::size_t>(y - info.box.y) * width(); }
};

// Reads a file. Channels are found by the names R, G, B and A, else by their order; one colour channel fills
// red, green and blue; other channels are left out. Throws Error when the file is missing, is no image or
// is not whole, and Interrupted when the flag was raised on the way.
Image read_image(const std::string& path, const Zo::Image::AbortFlag* abort = nullptr);

// The same for a matte: a file without alpha supplies its first channel as alpha.
Image read_matte(const std::string& path, const Zo::Image::AbortFlag* abort = nullptr);

// The name of the alpha channel that a file has beside others, from its header; empty without one.
std::string own_alpha(const OIIO::ImageSpec& header);

// Whether the file is there and every pixel of it can be read.
bool is_whole_image(const std::string& path, const Zo::Image::AbortFlag* abort = nullptr);

// How many rows of so many bytes to decode or encode at a time: whole blocks of the usual compressions,
// enough to keep every thread of the library busy, in a few megabytes.
int rows_at_once(std::size_t row_bytes);

enum class Depth { kHalf, kFloat, kUint8, kUint16 };
std::optional<Depth> depth_named(std::string_view name);

struct WriteOptions {
    std::optional<Depth> depth{};  // none: half in OpenEXR, float in RLA, else up to 16-bit integers
    bool overwrite = false;
    const Zo::Image::AbortFlag* abort = nullptr;
};

// Throws Error when no writer answers to the file's extension, when the format cannot hold the depth, or
// when the file cannot be made there; so that a mistake shows before any frame is rendered.
void check_writable(const std::string& path, const WriteOptions& options);

// Writes the present channels with the header's metadata. The file appears under its name when it has been
// read back, header and pixels, and not before. OpenEXR keeps both windows; other formats get the display
// window, black where there are no pixels. Integers are clamped to their range and rounded to nearest; NaN
// becomes 0.
//
// Returns what metadata was left out because the file could not be read back with it; see Metadata.h.
std::string write_image(const std::string& path, const Image& image, const WriteOptions& options);

// What to tell about metadata that write_image left out.
std::string left_out_warning(const std::string& left_out);

}  // namespace veloxa
