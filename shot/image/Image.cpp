#include "shot/image/Image.h"

namespace veloxa {

using namespace Zo::Image;

Image::Image(const Info& of) : info(of) {
    for (const Channel c : info.channels& kMaskRgba) {
        plane(c) = make_plane(width() * height());
    }
}

std::string size_text(int width, int height) {
    return std::to_string(width) + 'x' + std::to_string(height);
}

std::string size_text(const Box& box) {
    return size_text(box.width(), box.height());
}

}  // namespace veloxa
