// Brings an input to the foreground's size.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "shot/image/Image.h"

namespace veloxa {

enum class Fit {
    kRefuse,  // another size is an error
    kResize,  // scaled to the foreground's display window
    kCrop,    // display windows centred on each other
    kNone     // left where it is, from the bottom left corner
};
std::optional<Fit> fit_named(std::string_view name);

// The image itself when its display window has the format's size. Where a smaller image ends its edge pixels
// repeat, as everywhere. Throws Error, naming `file` and both sizes, for kRefuse.
std::shared_ptr<const Image> fitted(std::shared_ptr<const Image> image, const Zo::Image::Format& format,
                                    Fit fit, const std::string& file);

}  // namespace veloxa
