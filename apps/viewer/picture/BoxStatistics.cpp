#include "picture/BoxStatistics.h"

#include <algorithm>
#include <cmath>

namespace veloxa::viewer {

using namespace Zo::Image;

BoxStatistics statistics(const Image& image, const Box& box) {
    Box part = image.info.box;
    part.intersect(box);
    BoxStatistics result;
    if (part.empty()) return result;
    result.pixels = static_cast<std::int64_t>(part.width()) * part.height();
    for (const Channel c : kMaskRgba) {
        if (!image.has(c)) continue;
        ChannelStatistics& channel = result.channels[static_cast<std::size_t>(c - kRed)];
        double sum = 0.0;
        std::int64_t finite = 0;
        for (int y = part.y; y < part.t; ++y) {
            const float* const line = image.line(c, y) - image.info.box.x;
            for (int x = part.x; x < part.r; ++x) {
                const float v = line[x];
                if (!std::isfinite(v)) continue;
                channel.least = finite == 0 ? v : std::min(channel.least, v);
                channel.most = finite == 0 ? v : std::max(channel.most, v);
                sum += static_cast<double>(v);
                ++finite;
            }
        }
        if (finite > 0) channel.mean = sum / static_cast<double>(finite);
        result.broken += result.pixels - finite;
    }
    return result;
}

std::array<float, 4> value_at(const Image& image, int x, int y) {
    std::array<float, 4> values{};
    const Box& box = image.info.box;
    if (box.empty()) return values;
    const int column = std::clamp(x, box.x, box.r - 1) - box.x;
    const int row = std::clamp(y, box.y, box.t - 1);
    for (const Channel c : kMaskRgba) {
        if (image.has(c)) values[static_cast<std::size_t>(c - kRed)] = image.line(c, row)[column];
    }
    return values;
}

}  // namespace veloxa::viewer
