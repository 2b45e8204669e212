// Clear frame, clean-up and shadows against values worked out by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "screen/CleanupKernel.h"
#include "screen/CombineShadowKernel.h"
#include "screen/ComputeShadowKernel.h"
#include "screen/VlxClearFrame.h"
#include "support/StageControls.h"

using test::StageControls;

TEST(ClearFrame, CoverageCarriesOverBlackPixelsFromTheBoxEdge) {
    using namespace Zo::Image;
    const float fg[] = {9, 100, 50, 1, 2, -10};
    const float clear[] = {0, 100, 100, 0, 0, 100};
    const Box box{3, 0, 9, 1};
    test::FunctionSource foreground(box, kMaskRgba, [&](Channel, int x, int) { return fg[x - 3]; });
    test::FunctionSource plate(box, kMaskRgb, [](Channel, int, int) { return 255.0f; });
    test::FunctionSource frame(box, kMaskRgba, [&](Channel, int x, int) { return clear[x - 3]; });
    const StageControls controls;
    VlxClearFrame op(NodeContext{}, &controls.block);
    op.set_input(0, &foreground);
    op.set_input(1, &plate);
    op.set_input(2, &frame);
    op.setup();
    // 255 less (fg * 255 + 50) / 100, which is capped in column 1.
    const float alpha[] = {255, 0, 127, 127, 127, 280};
    const float colour[] = {255, 255, 128, 255, 255, -25};  // over a black clear frame infinite, capped
    const test::Picture whole = test::render(op);
    for (int x = 3; x < 9; ++x) {
        EXPECT_FLOAT_EQ(whole.at(kAlpha, x, 0), alpha[x - 3]) << x;
        EXPECT_FLOAT_EQ(whole.at(kGreen, x, 0), colour[x - 3]) << x;
        EXPECT_EQ(test::render(op, {x, 0, x + 1, 1}).at(kAlpha, x, 0), whole.at(kAlpha, x, 0)) << x;
    }
}

TEST(Cleanup, PushesWhatIsAboveTheThreshold) {
    const struct {
        int strength;
        float matte, expected, colour_share;
    } cases[] = {{100, 10, 10, 1},
                 {100, 10.9f, 10.9f, 1},  // less than one level above
                 {100, 11, 11 + 244 / 255.0f, 254 / 255.0f},
                 {500, 70, 255, 0},  // 60 * 5 saturates
                 {100, -3, -3, 1}};
    for (const auto& c : cases) {
        const StageControls controls{{62, 10}, {63, c.strength}};
        const CleanupParams params = cleanup_params(controls.block);
        const float colour = 51;
        float out[2];
        cleanup_matte(params, &c.matte, &out[0], 1);
        cleanup_colour(params, &c.matte, &colour, &out[1], 1);
        EXPECT_FLOAT_EQ(out[0], c.expected) << c.matte;
        EXPECT_FLOAT_EQ(out[1], 51 * c.colour_share) << c.matte;
    }
}

TEST(Shadow, DensityIsTheMissingBrightness) {
    StageControls controls{{75, 60}, {76, 80}, {77, 200}};  // sum 340
    const float role0[] = {60, 30, 0, 120, NAN};
    const float role1[] = {80, 40, 0, 160, 0};
    const float primary[] = {200, 100, 0, 400, 0};
    const float expected[] = {0, 127.5f, 255, 0};
    float density[5];
    compute_shadow(compute_shadow_params(controls.block), {role0, role1, primary}, density, 5);
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(density[i], expected[i], 1e-4f) << i;
    EXPECT_TRUE(std::isnan(density[4]));
    controls.block.set(controls::kBackingColor, 0, 0, 0);
    compute_shadow(compute_shadow_params(controls.block), {role0, role1, primary}, density, 5);
    EXPECT_EQ(density[0], 0.0f);
    EXPECT_TRUE(std::isnan(density[2]));
}

TEST(Shadow, CombinesByLevelsDensityAndTint) {
    const struct {
        int low, high, density;
        float matte, shadow, alpha, tint;  // tint: the share of it that is added
    } cases[] = {
        {0, 255, 100, 200, 0, 200, 0},                    // no shadow
        {0, 255, 100, 255, 255, 0, 1},                    // full shadow
        {0, 255, 50, 255, 255, 127.5f, 0.5f},             // half density
        {0, 255, 300, 255, 200, 0, 1},                    // beyond full
        {0, 255, 0, 255, 255, 255, 0},                    // off
        {0, 128, 100, 255, 127, 255, 0},                  // light 128 is the new white
        {55, 155, 100, 255, 150, 155, 100.0f / 255.0f},   // 50 * 200 / 100 + 55
        {100, 100, 100, 255, 155, 100, 155.0f / 255.0f},  // at the low end unchanged
        {100, 100, 100, 255, 100, 255, 0},                // no range: above low is white
        {0, 255, 100, 0, 255, 0, 0},                      // a matte of 0 takes no tint
    };
    for (const auto& c : cases) {
        const StageControls controls{{67, c.low}, {66, c.high}, {65, c.density},
                                     {161, 10},   {162, 20},    {163, 300}};
        const float fg[] = {5, -6, 7};
        float out[4];
        combine_shadow(combine_shadow_params(controls.block), {&fg[0], &fg[1], &fg[2]}, &c.matte, &c.shadow,
                       {&out[0], &out[1], &out[2]}, &out[3], 1);
        EXPECT_NEAR(out[0], 5 + 10 * c.tint, 1e-4f) << &c - cases;
        EXPECT_NEAR(out[1], -6 + 20 * c.tint, 1e-4f) << &c - cases;
        EXPECT_NEAR(out[2], std::min(255.0f, 7 + 300 * c.tint), 1e-3f) << &c - cases;
        EXPECT_NEAR(out[3], c.alpha, 1e-3f) << &c - cases;
    }
}
