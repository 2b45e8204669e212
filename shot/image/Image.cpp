#include "shot/image/Image.h"

#include "ZoImage/FramePlane.h"

namespace veloxa {

using namespace Zo::Image;

Plane make_plane(std::size_t pixels) {
    using Memory = FrameAllocator<float>;
    return {Memory().allocate(pixels), [pixels](float* plane) { Memory().deallocate(plane, pixels); }};
}

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
