// The output passes against values worked out by hand.
#include "keyer/OutputKernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

TEST(OutputKernel, DecodeUndoesTheKnee) {
    struct Case {
        float v;
        float decoded;
    };
    const Case cases[] = {
        {0.0f, 0.0f},    {-25.5f, -0.1f},  // straight below the pivot
        {127.5f, 0.5f},  {170.0f, 1.0f},   // t = 1/3: t / (1 - t) + 0.5
        {191.25f, 1.5f}, {229.5f, 4.5f},   // t = 0.5, t = 0.8
        {255.0f, kInf},  {300.0f, kInf},
    };
    for (const Case& c : cases) {
        if (std::isinf(c.decoded)) {
            EXPECT_EQ(decode(c.v, 0.5f), c.decoded) << c.v;
        } else {
            EXPECT_NEAR(decode(c.v, 0.5f), c.decoded, 2e-6f) << c.v;
        }
    }
    EXPECT_TRUE(std::isnan(decode(kNaN, 0.5f)));
    EXPECT_FLOAT_EQ(decode(51.0f, 0.1f), 0.1f / 0.9f / (1.0f - 0.1f / 0.9f) + 0.1f);
}

TEST(OutputKernel, RulesForEveryMode) {
    // Opaque, transparent, beyond both ends, half, infinite colour over an opaque and over a clear pixel.
    const float matte[] = {0.0f, 170.01f, 400.0f, -30.0f, 127.5f, 0.0f, 255.0f};
    const float colour[] = {51.0f, 51.0f, 51.0f, 51.0f, 102.0f, 255.0f, 51.0f};
    const float background[] = {0.5f, 0.5f, 0.25f, 0.5f, 1.0f, 0.5f, kInf};
    constexpr std::size_t n = std::size(matte);
    float k[n];
    opacity(matte, k, n);
    const float expected_k[] = {1, 0, 0, 1, 0.5f, 1, 0};
    for (std::size_t i = 0; i < n; ++i) EXPECT_NEAR(k[i], expected_k[i], 1e-6f) << i;

    float out[n];
    output_colour(OutputMode::kComposite, colour, background, k, out, n);
    const float composite[] = {0.2f, 0.5f, 0.25f, 0.2f, 0.7f, kInf, kInf};
    for (std::size_t i = 0; i < n; ++i) {
        if (std::isinf(composite[i])) {
            EXPECT_EQ(out[i], composite[i]) << i;
        } else {
            EXPECT_NEAR(out[i], composite[i], 1e-6f) << i;
        }
    }
    output_colour(OutputMode::kPremultiplied, colour, background, k, out, n);
    EXPECT_EQ(out[2], 0.0f);
    EXPECT_NEAR(out[4], 0.2f, 1e-6f);
    output_colour(OutputMode::kUnpremultiplied, colour, background, k, out, n);
    EXPECT_NEAR(out[2], 0.2f, 1e-6f);
    EXPECT_EQ(out[5], kInf);
}

TEST(OutputKernel, LinearScaleAndAddedColour) {
    // Opaque, the knee's end, nearly and fully transparent, beyond both ends, NaN.
    const float matte[] = {0.0f, 170.0f, 204.0f, 255.0f, 400.0f, -30.0f, kNaN};
    const float expected_k[] = {1.0f, 1.0f / 3.0f, 0.2f, 0.0f, 0.0f, 1.0f};
    constexpr std::size_t n = std::size(matte);
    float k[n];
    linear_opacity(matte, k, n);
    for (std::size_t i = 0; i + 1 < n; ++i) EXPECT_NEAR(k[i], expected_k[i], 1e-6f) << i;
    EXPECT_TRUE(std::isnan(k[n - 1]));

    // Colours that decode to 0.1, 1.5, what no half float holds, and NaN.
    const float colour[] = {25.5f, 191.25f, 25.5f, 25.5f, 255.0f, 300.0f, kNaN};
    const float opaque[] = {1.0f, 0.25f, 0.2f, 0.0f, 0.5f, 0.0f, 1.0f};
    const float background[] = {0.5f, 0.8f, 0.5f, 0.75f, 1.0f, 0.0f, 0.5f};
    const struct {
        OutputMode mode;
        float expected[n - 1];
    } cases[] = {
        {OutputMode::kComposite, {0.1f, 2.1f, 0.5f, 0.85f, 65504.5f, 65504.0f}},
        {OutputMode::kPremultiplied, {0.1f, 1.5f, 0.1f, 0.1f, 65504.0f, 65504.0f}},
        {OutputMode::kUnpremultiplied, {0.1f, 6.0f, 0.5f, 0.0f, 131008.0f, 0.0f}},
    };
    for (const auto& c : cases) {
        float out[n];
        added_colour(c.mode, colour, background, opaque, out, n);
        for (std::size_t i = 0; i + 1 < n; ++i) EXPECT_FLOAT_EQ(out[i], c.expected[i]) << i;
        EXPECT_TRUE(std::isnan(out[n - 1]));
    }
}

TEST(OutputKernel, OverlayCoversScreenOrSubject) {
    const float region[] = {0.0f, 255.0f, 127.5f, kNaN, -1.0f};
    const float r[] = {1, 1, 1, 1, 1};
    const float g[] = {0.5f, 0.5f, 0.5f, 0.5f, 0.5f};
    const float b[] = {0, 0, 0, 0, 0};
    constexpr std::size_t n = std::size(region);
    struct Case {
        OverlayMode mode;
        bool covered[n];
    };
    const Case cases[] = {
        {OverlayMode::kScreen, {false, true, true, false, false}},
        {OverlayMode::kSubject, {true, false, false, false, false}},
        {static_cast<OverlayMode>(3), {false, false, false, false, false}},
    };
    for (const Case& c : cases) {
        float out[3][n];
        const OverlayParams params{c.mode, false, {0.0f, 1.0f, 1.0f, 0.25f}, 0.5f};
        overlay(params, region, {r, g, b}, {out[0], out[1], out[2]}, n);
        for (std::size_t i = 0; i < n; ++i) {
            EXPECT_FLOAT_EQ(out[0][i], c.covered[i] ? 0.75f : 1.0f) << i;
            EXPECT_FLOAT_EQ(out[1][i], c.covered[i] ? 0.625f : 0.5f) << i;
            EXPECT_FLOAT_EQ(out[2][i], c.covered[i] ? 0.25f : 0.0f) << i;
        }
    }
    float grey[n];
    overlay({OverlayMode::kScreen, true, {0, 0, 0, 1.0f}, 0.5f}, region, {r, g, b}, {grey, nullptr, nullptr},
            n);
    EXPECT_FLOAT_EQ(grey[0], 0.595f);  // 0.3 + 0.59 / 2
    EXPECT_EQ(grey[1], 0.0f);          // flat overlay colour
}

TEST(OutputKernel, HoldoutBringsTheForegroundBack) {
    const float holdout[] = {0.5f, 0.5f, 0.0f, kNaN, 1.0f};
    const float fg[] = {1.0f, 1.0f, kNaN, 1.0f, 0.25f};
    float alpha[] = {0.8f, 0.2f, 0.3f, 0.4f, 0.0f};
    float colour[] = {0.5f, 0.0f, 0.6f, 0.5f, 0.75f};
    holdout_alpha(holdout, alpha, 5);
    holdout_colour(holdout, fg, colour, 5);
    const float expected_alpha[] = {0.8f, 0.5f, 0.3f, 0.4f, 1.0f};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(alpha[i], expected_alpha[i]) << i;
    EXPECT_FLOAT_EQ(colour[0], 0.75f);
    EXPECT_FLOAT_EQ(colour[1], 0.5f);
    EXPECT_EQ(colour[2], 0.6f);
    EXPECT_TRUE(std::isnan(colour[3]));  // a NaN counts as not 0
    EXPECT_EQ(colour[4], 0.25f);
}

}  // namespace
