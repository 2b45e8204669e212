// Values of the encodings worked out by hand, and the way back.
#include <gtest/gtest.h>

#include <cmath>

#include "unmix/EncodingKernel.h"

namespace {

TEST(Encodings, ValuesAndTheirLight) {
    const struct {
        Encoding encoding;
        float value, light;
        bool back = true;
    } cases[] = {
        {Encoding::kStored, -3.5f, -3.5f},
        {Encoding::kStored, INFINITY, 65504.0f, false},
        {Encoding::kStored, NAN, 0.0f, false},
        {Encoding::kSrgb, 0.04f, 0.04f / 12.92f},
        {Encoding::kSrgb, -0.5f, -0.5f / 12.92f},
        {Encoding::kSrgb, 0.5f, 0.2140411f},  // (0.555 / 1.055) ^ 2.4
        {Encoding::kSrgb, 1.0f, 1.0f},
        {Encoding::kSrgb, 2.055f, 5.278032f},  // 2 ^ 2.4
        {Encoding::kSrgb, -INFINITY, -5069.969f, false},
        {Encoding::kSrgb, NAN, 0.0f, false},
        {Encoding::kLogarithmic, 95.0f / 1023.0f, 0.0f},
        {Encoding::kLogarithmic, 685.0f / 1023.0f, 1.0f},
        {Encoding::kLogarithmic, 535.0f / 1023.0f, 0.3087640f},  // (10 ^ -0.5 - 0.0107978) / 0.9892022
        {Encoding::kLogarithmic, INFINITY, 65504.0f, false},
    };
    for (const auto& c : cases) {
        float out = 0.0f;
        to_light(c.encoding, &c.value, &out, 1);
        EXPECT_NEAR(out, c.light, 1e-6f * std::fmax(1.0f, std::fabs(c.light))) << c.value;
        if (!c.back) continue;
        from_light(c.encoding, &out, &out, 1);
        EXPECT_NEAR(out, c.value, 2e-6f * std::fmax(1.0f, std::fabs(c.value))) << c.value;
    }
}

}  // namespace
