#include "shot/image/HalfFloat.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

using namespace veloxa;

namespace {

// Sign, exponent and mantissa by the definition of the format.
float value_of(int bits) {
    const int exponent = bits >> 10 & 31;
    const int mantissa = bits & 1023;
    double value = exponent == 0 ? std::ldexp(mantissa, -24) : std::ldexp(1024 + mantissa, exponent - 25);
    if (exponent == 31) value = mantissa == 0 ? HUGE_VAL : std::nan("");
    return static_cast<float>(bits & 0x8000 ? -value : value);
}

Half narrowed(float v) {
    Half half{};
    to_half(&v, &half, 1);
    return half;
}

TEST(HalfFloat, EveryHalfHasItsValueAndComesBack) {
    std::vector<Half> halves(0x10000);
    for (std::size_t n = 0; n < halves.size(); ++n) halves[n] = static_cast<Half>(n);
    std::vector<float> floats(halves.size());
    from_half(halves.data(), floats.data(), halves.size());
    std::vector<Half> back(halves.size());
    to_half(floats.data(), back.data(), halves.size());
    for (std::size_t n = 0; n < halves.size(); ++n) {
        const float value = value_of(static_cast<int>(n));
        const bool nan = std::isnan(value);
        EXPECT_EQ(std::isnan(floats[n]), nan) << n;
        EXPECT_EQ(std::isnan(value_of(static_cast<int>(back[n]))), nan) << n;
        if (nan) continue;
        EXPECT_EQ(std::bit_cast<std::uint32_t>(floats[n]), std::bit_cast<std::uint32_t>(value)) << n;
        EXPECT_EQ(back[n], halves[n]);
    }
}

TEST(HalfFloat, RoundsToTheNearestAndTiesToEven) {
    for (int n = 0; n < 0x7bff; ++n) {
        const float low = value_of(n);
        const float high = value_of(n + 1);
        const float middle = (low + high) / 2.0f;  // exact
        const auto even = static_cast<Half>(n % 2 == 0 ? n : n + 1);
        ASSERT_EQ(narrowed(middle), even) << n;
        ASSERT_EQ(narrowed(std::nextafter(middle, low)), static_cast<Half>(n));
        ASSERT_EQ(narrowed(std::nextafter(middle, high)), static_cast<Half>(n + 1));
    }
    EXPECT_EQ(narrowed(-65519.996f), Half{0xfbff});
    EXPECT_EQ(narrowed(65520.0f), Half{0x7c00});
    EXPECT_EQ(narrowed(-1e30f), Half{0xfc00});
    EXPECT_EQ(narrowed(1e-40f), Half{0});
}

}  // namespace
