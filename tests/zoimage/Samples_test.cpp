#include "ZoImage/Samples.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

using namespace Zo::Image;

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
    return from_float<Half>(v);
}

TEST(Samples, EveryHalfHasItsValueAndComesBack) {
    for (int n = 0; n < 0x10000; ++n) {
        const auto half = static_cast<Half>(n);
        const float read = to_float(half);
        const float value = value_of(n);
        if (std::isnan(value)) {
            EXPECT_TRUE(std::isnan(read) && std::isnan(to_float(narrowed(read)))) << n;
        } else {
            EXPECT_EQ(std::bit_cast<std::uint32_t>(read), std::bit_cast<std::uint32_t>(value)) << n;
            EXPECT_EQ(narrowed(read), half);
        }
    }
}

TEST(Samples, HalvesAreRoundedToTheNearestAndTiesToEven) {
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

// Those between two numbers go to the nearer: in single precision some would go to the other.
TEST(Samples, WholeNumbersComeBackAndTheMiddlesRoundUp) {
    const auto check = []<class Number>(Number) {
        constexpr double kWhite = std::numeric_limits<Number>::max();
        for (int n = 0; n <= std::numeric_limits<Number>::max(); ++n) {
            ASSERT_EQ(from_float<Number>(to_float(static_cast<Number>(n))), n);
            const auto middle = static_cast<float>((n + 0.5) / kWhite);
            const double exact = static_cast<double>(middle) * kWhite;
            if (exact >= kWhite) continue;
            ASSERT_EQ(from_float<Number>(middle), static_cast<Number>(exact + 0.5)) << n;
        }
        for (const float v : {std::nanf(""), -1.0f, -HUGE_VALF}) EXPECT_EQ(from_float<Number>(v), 0);
        for (const float v : {1.0f, 2.0f, HUGE_VALF}) EXPECT_EQ(from_float<Number>(v), kWhite);
        EXPECT_EQ(to_float(std::numeric_limits<Number>::max()), 1.0f);
    };
    check(std::uint8_t{});
    check(std::uint16_t{});
}

}  // namespace
