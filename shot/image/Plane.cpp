#include "shot/image/Plane.h"

#include "ZoImage/FramePlane.h"

namespace veloxa {

Plane make_plane(std::size_t pixels) {
    using Memory = Zo::Image::FrameAllocator<float>;
    return {Memory().allocate(pixels), [pixels](float* plane) { Memory().deallocate(plane, pixels); }};
}

}  // namespace veloxa
