// Pixels in memory.
//
// Planar floats, bottom row first. File rows count downward; here row 0 is the bottom row of the file's
// display window and column 0 its left column, so y = (display bottom row) - (file row) and x = (file column)
// - (display left column). The data window becomes the box, which may reach beyond the display window or not
// fill it.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "ZoImage/Info.h"
#include "shot/image/Header.h"

namespace veloxa {

// One channel's pixels. Planes are shared: a grey file has one plane for red, green and blue.
using Plane = std::shared_ptr<float[]>;

// A plane of undefined pixels, from the engine's memory for frames.
Plane make_plane(std::size_t pixels);

struct KeptLayers;

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
    Header header;                // the file's metadata and windows; the default one for a new image
    // What else a foreground's file holds, as stored, to be written beside the result; null where nothing is
    // kept. See shot/files/KeptLayers.h.
    std::shared_ptr<const KeptLayers> kept;

  private:
    std::size_t offset(int y) const { return static_cast<std::size_t>(y - info.box.y) * width(); }
};

// "1920x1080".
std::string size_text(int width, int height);
std::string size_text(const Zo::Image::Box& box);

}  // namespace veloxa
