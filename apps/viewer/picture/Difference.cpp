#include <cmath>

#include "picture/Shading.h"
#include "shot/Errors.h"

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

float sample(const Image& image, Channel c, int x, int y) {
    const Box& box = image.info.box;
    const bool there = image.has(c) && x >= box.x && x < box.r && y >= box.y && y < box.t;
    return there ? image.line(c, y)[x - box.x] : 0.0f;
}

}  // namespace

Image difference(const Image& a, const Image& b, float gain) {
    const Box &frame = a.info.format.box, &other = b.info.format.box;
    if (frame.width() != other.width() || frame.height() != other.height()) {
        throw Error("pictures of " + size_text(frame) + " and " + size_text(other) +
                    " have no difference pixel by pixel");
    }
    Info info = a.info;
    info.box.merge(b.info.box);
    info.channels += b.info.channels;
    Image result(info);
    const Box& box = info.box;
    const bool same = a.info.box == box && b.info.box == box;
    for (const Channel c : info.channels& kMaskRgba) {
        const bool both = same && a.has(c) && b.has(c);
        for (int y = box.y; y < box.t; ++y) {
            float* const out = result.line(c, y);
            const float* const one = both ? a.line(c, y) : nullptr;
            const float* const two = both ? b.line(c, y) : nullptr;
            for (int x = box.x; x < box.r; ++x) {
                const int n = x - box.x;
                out[n] = gain * std::abs(both ? one[n] - two[n] : sample(a, c, x, y) - sample(b, c, x, y));
            }
        }
    }
    return result;
}

}  // namespace veloxa::viewer
