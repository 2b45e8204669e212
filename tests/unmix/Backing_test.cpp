// The model of the backing, from plates whose backing and noise are known.
#include <gtest/gtest.h>

#include "unmix/Picture.h"

using namespace test;

namespace {

bool in_patch(int x, int y) {
    return x >= 120 && x < 200 && y >= 80 && y < 160;
}

// Deviations 0.01, 0.02, 0.015; red and green go together by 0.6, blue goes by itself.
TEST(Backing, LightAndNoiseOfAPlate) {
    const auto lit = [](int x, int y) {
        const float u = static_cast<float>(x) / 160.0f - 1.0f, v = static_cast<float>(y) / 120.0f - 1.0f;
        return mix(kGreen, {}, 0.9f + 0.08f * u - 0.06f * v * v + 0.05f * u * u * u);
    };
    std::mt19937 random(1);
    std::normal_distribution<float> normal;
    Picture p(320, 240, [&](int x, int y) {
        const float a = normal(random), b = normal(random), d = normal(random);
        const Colour c = in_patch(x, y) ? kGrey : lit(x, y);
        return Colour{c[0] + 0.01f * a, c[1] + 0.02f * (0.6f * a + 0.8f * b), c[2] + 0.015f * d};
    });
    p.fit();
    ASSERT_TRUE(p.backing.found);
    const float sigma[] = {0.01f, 0.02f, 0.015f};
    each(320, 240, [&](int x, int y) {
        // Means of 16 pixels are so far off once in a million.
        for (std::size_t c = 0; c < 3; ++c) ASSERT_NEAR(p.behind(x, y)[c], lit(x, y)[c], 1.25f * sigma[c]);
        ASSERT_EQ(p.backing.sure(x / 4, y / 4), in_patch(x, y) ? 0 : 1) << x << ' ' << y;
    });
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(p.backing.sigma[c], sigma[c], 0.04f * sigma[c]) << c;
    // The model follows the means, whose sixteenth of the noise is missing.
    const float covariance[] = {1e-4f, 1.2e-4f, 0.0f, 4e-4f, 0.0f, 2.25e-4f};
    for (std::size_t n = 0; n < 6; ++n)
        EXPECT_NEAR(p.backing.noise[n], 15.0f / 16.0f * covariance[n], 8e-6f) << n;
    for (std::size_t c = 0; c < 3; ++c) EXPECT_NEAR(p.backing.colour[c], kGreen[c] / 0.6f, 0.01f) << c;
}

// What lies in the middle, whether it counts as backing, and what is behind it then.
TEST(Backing, WhatCountsAsIt) {
    const Colour tape{0.05f, 0.4f, 0.25f};
    const auto fold = [](int x, int y) {
        return mix(kGreen, {}, 1.0f - 0.3f * std::exp(-5e-4f * std::pow(away_from(x, y, 160, 120), 2.0f)));
    };
    const auto patch = [](const Colour& c) {
        return [c](int x, int y) { return in_patch(x, y) ? c : kGreen; };
    };
    const struct {
        const char* name;
        std::function<Colour(int, int)> at;
        float folds;
        std::vector<Colour> taught;
        bool counts;
        Colour behind;
        float tolerance = 0.01f;
    } cases[] = {
        {"a soft fold", fold, 1.0f, {}, true, mix(kGreen, {}, 0.7f)},
        {"folds off", fold, 0.0f, {}, false, kGreen, 0.12f},
        {"grey", patch(kGrey), 1.0f, {}, false, kGreen},
        {"a veil", patch(mix(kGrey, kGreen, 0.2f)), 1.0f, {}, false, kGreen},
        {"another green", patch(tape), 1.0f, {}, false, kGreen},
        {"one that was taught", patch(tape), 1.0f, {tape}, true, tape},
    };
    for (const auto& c : cases) {
        Picture p(320, 240, c.at);
        p.fit({c.folds, c.taught});
        EXPECT_EQ(p.backing.sure(40, 30), c.counts ? 1 : 0) << c.name;
        EXPECT_EQ(p.backing.sure(5, 5), 1) << c.name;
        for (std::size_t n = 0; n < 3; ++n)
            EXPECT_NEAR(p.behind(160, 120)[n], c.behind[n], c.tolerance) << c.name;
        const float shade = (c.behind[0] + c.behind[1] + c.behind[2]) / 0.85f;
        EXPECT_NEAR(p.backing.shade(40, 30), shade, 3.0f * c.tolerance) << c.name;
    }
}

// Stripes that no smooth light has, and the plate a little darker.
TEST(Backing, IsTheCleanPlateWhereThereIsOne) {
    const auto stripes = [](int x, int) { return mix(kGreen, {}, x / 5 % 2 == 0 ? 1.0f : 0.9f); };
    Picture p(320, 240, [&](int x, int y) { return in_patch(x, y) ? kGrey : mix(stripes(x, y), {}, 0.98f); });
    p.paint(p.backing.clean, stripes);
    p.fit();
    each(320, 240, [&](int x, int y) {
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_NEAR(p.behind(x, y)[c], 0.98f * stripes(x, y)[c], 0.003f) << x << ' ' << y;
    });
}

}  // namespace
