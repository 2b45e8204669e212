#include "unmix/Light.h"

#include "unmix/EncodingKernel.h"

using namespace Zo::Image;

namespace unmix {

bool read_light(Iop& image, const Box& box, Encoding encoding, Colours& light, Lock& helpers) {
    resize(light, box.width(), box.height());
    const RowSource source{&image, kMaskRgb};
    return fetch_rows({&source, 1}, box, &helpers, [&](std::size_t, int y, const Row& row) {
        std::size_t c = 0;
        for (const Channel channel : kMaskRgb) {
            to_light(encoding, row[channel], light[c++].row(y - box.y), row.width());
        }
    });
}

bool read_matte(Iop& image, const Box& box, Floats& matte, Lock& helpers) {
    matte.resize(box.width(), box.height());
    const RowSource source{&image, kMaskAlpha};
    return fetch_rows({&source, 1}, box, &helpers, [&](std::size_t, int y, const Row& row) {
        const float* const from = row[kAlpha];
        float* const to = matte.row(y - box.y);
        for (std::size_t x = 0; x < row.width(); ++x) {
            to[x] = from[x] > 0.0f ? std::min(from[x], 1.0f) : 0.0f;
        }
    });
}

}  // namespace unmix
