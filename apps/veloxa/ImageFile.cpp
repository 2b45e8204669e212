#include "ImageFile.h"

#include <algorithm>

namespace veloxa {

using namespace Zo::Image;

Image::Image(const Info& of) : info(of) {
    for (const Channel c : info.channels& kMaskRgba) {
        plane(c) = make_plane(width() * height());
    }
}

int rows_at_once(std::size_t row_bytes) {
    constexpr std::size_t kBytes = std::size_t{4} << 20;
    constexpr std::size_t kBlock = 32;
    const std::size_t blocks = kBytes / kBlock / std::max<std::size_t>(row_bytes, 1);
    return static_cast<int>(kBlock * std::clamp<std::size_t>(blocks, 1, 8));
}

std::optional<Depth> depth_named(std::string_view name) {
    if (name == "half") return Depth::kHalf;
    if (name == "float") return Depth::kFloat;
    if (name == "uint8") return Depth::kUint8;
    if (name == "uint16") return Depth::kUint16;
    return std::nullopt;
}

}  // namespace veloxa
