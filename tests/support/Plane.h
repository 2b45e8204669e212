// A plane of floats that repeats its edge pixels, for naive filters to compare against.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "support/TestImages.h"

namespace test {

struct Plane {
    Box box;
    std::vector<float> values;

    template <class Pixel>
    Plane(const Box& b, Pixel&& pixel) : box(b) {
        for (int y = b.y; y < b.t; ++y) {
            for (int x = b.x; x < b.r; ++x) values.push_back(pixel(x, y));
        }
    }
    float at(int x, int y) const {
        x = std::clamp(x, box.x, box.r - 1);
        y = std::clamp(y, box.y, box.t - 1);
        return values[static_cast<std::size_t>((y - box.y) * box.width() + x - box.x)];
    }
};

// Comparing these tells -0 from 0, and one NaN equals another.
inline std::vector<std::uint32_t> bits(const std::vector<float>& values) {
    std::vector<std::uint32_t> result;
    for (const float v : values) result.push_back(v != v ? 0x7fc00000U : std::bit_cast<std::uint32_t>(v));
    return result;
}

// Values that filters trip over: negatives, far above 255, exact zeros of both signs, infinities, NaN.
inline Plane awkward_plane(const Box& box, unsigned seed) {
    using Limits = std::numeric_limits<float>;
    const float special[] = {0.0f, -0.0f, Limits::quiet_NaN(), 3e7f, Limits::infinity()};
    std::mt19937 random(seed);
    return Plane(box, [&](int, int) {
        const auto pick = random() % 50;
        return pick < 5 ? special[pick] : static_cast<float>(random() % 100000) / 300.0f - 60.0f;
    });
}

// A source whose alpha is the plane and whose other channels are their number.
inline FunctionSource::Pixel pixels_of(const Plane& alpha) {
    return [alpha](Channel c, int x, int y) { return c == kAlpha ? alpha.at(x, y) : static_cast<float>(c); };
}

}  // namespace test
