// What the values in a box are.
#pragma once

#include <array>
#include <cstdint>

#include "shot/image/Image.h"

namespace veloxa::viewer {

struct ChannelStatistics {
    float least = 0.0f;
    float most = 0.0f;
    double mean = 0.0;
};

struct BoxStatistics {
    std::array<ChannelStatistics, 4> channels{};  // red, green, blue, alpha, of the finite values
    std::int64_t pixels = 0;
    std::int64_t broken = 0;  // samples that are NaN or infinite, left out of the above
};

// Of the box's part that lies in the image's data window; absent channels are 0. Any thread.
BoxStatistics statistics(const Image& image, const Zo::Image::Box& box);

// Red, green, blue and alpha at a pixel; beyond the data window its edge pixels repeat. Absent channels are
// 0.
std::array<float, 4> value_at(const Image& image, int x, int y);

}  // namespace veloxa::viewer
