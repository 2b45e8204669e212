// Clear frame, clean-up and shadows against values worked out by hand.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "controls/Controls.h"
#include "screen/CleanupKernel.h"
#include "screen/CombineShadowKernel.h"
#include "screen/ComputeShadowKernel.h"
#include "screen/VlxClearFrame.h"
#include "support/TestImages.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

struct Block {
    Block() : controls(values.data(), 1) {}
    std::array<std::int32_t, ControlBlock::kCount> values;
    ControlBlock controls;
};

TEST(ClearFrame, RatiosCarryOverBlackPixelsFromTheBoxEdge) {
    using namespace Zo::Image;
    // Columns: black clear frame first, then equal, half, black twice, negative foreground.
    const float fg[] = {9, 100, 50, 1, 2, -10};
    const float clear[] = {0, 100, 100, 0, 0, 100};
    const auto from = [](const float* line, float alpha) {
        return [line, alpha](Channel c, int x, int) { return c == kAlpha ? alpha : line[x - 3]; };
    };
    const Box box{3, 0, 9, 1};
    test::FunctionSource foreground(box, kMaskRgba, from(fg, 1));
    test::FunctionSource plate(box, kMaskRgb, [](Channel, int, int) { return 255.0f; });
    test::FunctionSource frame(box, kMaskRgba, from(clear, 0));
    Block block;
    VlxClearFrame op(NodeContext{}, &block.controls);
    op.set_input(0, &foreground);
    op.set_input(1, &plate);
    op.set_input(2, &frame);
    op.setup();
    // Ratio (fg * 255 + 50) / 100 of sums of three: 255 capped, 128, carried, -25.
    const float alpha[] = {255, 0, 127, 127, 127, 280};
    const float colour[] = {255, 255, 128, 255, 255, -25};  // a product over 0 is infinite, capped
    const test::Picture whole = test::render(op);
    for (int i = 0; i < 6; ++i) {
        EXPECT_FLOAT_EQ(whole.at(kAlpha, 3 + i, 0), alpha[i]) << i;
        EXPECT_FLOAT_EQ(whole.at(kGreen, 3 + i, 0), colour[i]) << i;
        const test::Picture alone = test::render(op, {3 + i, 0, 4 + i, 1});
        EXPECT_EQ(alone.at(kAlpha, 3 + i, 0), whole.at(kAlpha, 3 + i, 0)) << i;
    }
    EXPECT_EQ(test::render(op, box, 1, kMaskRgb).at(kRed, 4, 0), 100.0f);  // without alpha input 0 passes
}

TEST(Cleanup, PushesWhatIsAboveTheThreshold) {
    Block block;
    block.controls.set(controls::kCleanUpRecover, 10);
    struct Case {
        int strength;
        float matte, colour, expected_matte, expected_colour;
    };
    const Case cases[] = {
        {100, 10.0f, 50.0f, 10.0f, 50.0f},
        {100, 10.9f, 50.0f, 10.9f, 50.0f},  // less than one level above
        {100, 11.0f, 51.0f, 11.0f + 244.0f / 255.0f, 51.0f * 254.0f / 255.0f},
        {500, 70.0f, 51.0f, 255.0f, 0.0f},  // 60 * 5 saturates
        {100, -3.0f, 51.0f, -3.0f, 51.0f},
    };
    for (const Case& c : cases) {
        block.controls.set(controls::kCleanUp, c.strength);
        const CleanupParams params = cleanup_params(block.controls);
        float matte = 0;
        float colour = 0;
        cleanup_matte(params, &c.matte, &matte, 1);
        cleanup_colour(params, &c.matte, &c.colour, &colour, 1);
        EXPECT_FLOAT_EQ(matte, c.expected_matte) << c.matte;
        EXPECT_FLOAT_EQ(colour, c.expected_colour) << c.matte;
    }
}

TEST(Shadow, DensityIsTheMissingBrightness) {
    Block block;
    block.controls.set(controls::kBackingColor, 60, 80, 200);  // sum 340
    const float role0[] = {60, 30, 0, 120, kNaN};
    const float role1[] = {80, 40, 0, 160, 0};
    const float primary[] = {200, 100, 0, 400, 0};
    const float expected[] = {0, 127.5f, 255, 0, kNaN};
    float density[5];
    compute_shadow(compute_shadow_params(block.controls), {role0, role1, primary}, density, 5);
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(density[i], expected[i], 1e-4f) << i;
    EXPECT_TRUE(std::isnan(density[4]));
    block.controls.set(controls::kBackingColor, 0, 0, 0);
    compute_shadow(compute_shadow_params(block.controls), {role0, role1, primary}, density, 5);
    EXPECT_EQ(density[0], 0.0f);
    EXPECT_TRUE(std::isnan(density[2]));
}

TEST(Shadow, CombinesByLevelsDensityAndTint) {
    struct Case {
        int low, high, density;
        float matte, shadow, alpha, weight;  // weight: share of the tint
    };
    const Case cases[] = {
        {0, 255, 100, 200, 0, 200, 0},                    // no shadow
        {0, 255, 100, 255, 255, 0, 1},                    // full shadow
        {0, 255, 50, 255, 255, 127.5f, 0.5f},             // half density
        {0, 255, 300, 255, 200, 0, 1},                    // beyond full
        {0, 255, 0, 255, 255, 255, 0},                    // off
        {0, 128, 100, 255, 127, 255, 0},                  // light 128 is the new white
        {100, 200, 100, 255, 155, 100, 155.0f / 255.0f},  // at the low end unchanged
        {100, 100, 100, 255, 100, 255, 0},                // no range: above low is white
        {0, 255, 100, 0, 255, 0, 0},                      // a matte of 0 takes no tint
    };
    for (const Case& c : cases) {
        Block block;
        block.controls.set(controls::kShadowLow, c.low);
        block.controls.set(controls::kShadowHigh, c.high);
        block.controls.set(controls::kShadowDensity, c.density);
        block.controls.set(controls::kShadowTint, 10, 20, 300);
        const float fg[] = {5, -6, 7};
        float out[3];
        float alpha = -1;
        combine_shadow(combine_shadow_params(block.controls), {&fg[0], &fg[1], &fg[2]}, &c.matte, &c.shadow,
                       {&out[0], &out[1], &out[2]}, &alpha, 1);
        EXPECT_NEAR(alpha, c.alpha, 1e-3f) << c.low << ' ' << c.high << ' ' << c.density;
        EXPECT_NEAR(out[0], 5 + 10 * c.weight, 1e-4f);
        EXPECT_NEAR(out[1], -6 + 20 * c.weight, 1e-4f);
        EXPECT_NEAR(out[2], std::min(255.0f, 7 + 300 * c.weight), 1e-3f);
    }
}

}  // namespace
