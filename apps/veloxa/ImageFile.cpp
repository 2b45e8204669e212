#include "ImageFile.h"

#include "Errors.h"

namespace veloxa {

using namespace Zo::Image;

Image::Image(const Info& of) : info(of) {
    for (const Channel c : info.channels& kMaskRgba) {
        plane(c) = std::make_shared_for_overwrite<float[]>(width() * height());
    }
}

bool is_whole_image(const std::string& path) {
    try {
        read_image(path);
        return true;
    } catch (const Error&) {
        return false;
    }
}

std::optional<Depth> depth_named(std::string_view name) {
    if (name == "half") return Depth::kHalf;
    if (name == "float") return Depth::kFloat;
    if (name == "uint8") return Depth::kUint8;
    if (name == "uint16") return Depth::kUint16;
    return std::nullopt;
}

}  // namespace veloxa
