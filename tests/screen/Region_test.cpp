// The clear-region family against values worked out by hand.
#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "controls/Controls.h"
#include "screen/ClearRegionKernel.h"
#include "screen/CrudeMatteKernel.h"
#include "screen/IslandKernel.h"
#include "screen/SubRegionKernel.h"
#include "screen/VlxClearRegion.h"
#include "screen/VlxComputeIsland.h"
#include "support/TestImages.h"

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

struct Block {
    Block() : controls(values.data(), 1) { controls.set(controls::kBackingColor, 60, 80, 200); }
    std::array<std::int32_t, ControlBlock::kCount> values;
    ControlBlock controls;
};

struct Pixel {
    float role0, role1, primary;
    RolePixels pixels() const { return {&role0, &role1, &primary}; }
};

TEST(ClearRegion, BothSecondariesMustPass) {
    // Tolerances 5, 5, 10: levels 65 and 85 under a primary of 200.
    struct Case {
        Pixel fg;
        float expected;
    };
    const Case cases[] = {
        {{60, 80, 200}, 255},        // the backing itself
        {{64.9f, 84.9f, 200}, 255},  // inside the tolerance
        {{65.1f, 60, 200}, 0},       // role 0 outside it
        {{60, 85.1f, 200}, 0},       // role 1
        {{30, 40, 100}, 255},        // half as bright: lines at 32.5 and 42.5
        {{33, 40, 100}, 0},
        {{30, 43, 100}, 0},
        {{75, 95, 240}, 255},  // brighter: content below (240 - 200)
        {{200, 120, 90}, 0},   // subject
        {{-5, -5, 0}, 255},    // darker than black in the secondaries
        {{0, 0, 0}, 0},
        {{60, 80, kNaN}, 0},
        {{kNaN, 80, 200}, 0},
    };
    Block block;
    const ClearRegionParams params = clear_region_params(block.controls);
    for (const Case& c : cases) {
        float alpha = -1;
        clear_region(params, c.fg.pixels(), nullptr, {nullptr, nullptr, nullptr}, &alpha, 1);
        EXPECT_EQ(alpha, c.expected) << c.fg.role0 << ' ' << c.fg.role1 << ' ' << c.fg.primary;
    }
}

TEST(ClearRegion, BrightsAndDarksAct) {
    // Brighter by 20: role 0 content is (70 * 200 - 220 * 65) / (200 - 65), negative; with brights at 0 or
    // 100 it passes. At 90 the content (90 * 200 - 220 * 65) / 135 = 27.4 exceeds 20 at 100 but not at 50.
    const Pixel pixel{90, 80, 220};
    for (const auto& [brights, expected] : {std::pair{100, 0.0f}, std::pair{50, 255.0f}}) {
        Block block;
        block.controls.set(controls::kRotoBrightsRG, brights);
        float alpha = -1;
        clear_region(clear_region_params(block.controls), pixel.pixels(), nullptr,
                     {nullptr, nullptr, nullptr}, &alpha, 1);
        EXPECT_EQ(alpha, expected) << brights;
    }
    // Darks of 10 per cent lift role 1's line at black by 255 * 0.1 * (200 - 85) / 200 = 14.66, so at primary
    // 100 from 42.5 to 49.83.
    for (const auto& [role1, expected] : {std::pair{49.8f, 255.0f}, std::pair{49.9f, 0.0f}}) {
        Block block;
        block.controls.set(controls::kRotoDarksGR, 10);
        const Pixel dark{30, role1, 100};
        float alpha = -1;
        clear_region(clear_region_params(block.controls), dark.pixels(), nullptr, {nullptr, nullptr, nullptr},
                     &alpha, 1);
        EXPECT_EQ(alpha, expected) << role1;
    }
}

TEST(ClearRegion, MattesDecideInTheirOrder) {
    const float no = 0.0f;
    const float yes = 0.25f;
    struct Case {
        const float* holdout;
        const float* crude;
        const float* garbage;
        float expected;
    };
    const Case cases[] = {{&no, &no, &yes, 255}, {&no, &yes, &no, 255},     {&yes, &yes, &yes, 0},
                          {&no, &no, &no, 0},    {&kNaN, nullptr, &yes, 0}, {nullptr, &kNaN, nullptr, 255}};
    const Pixel subject{200, 120, 90};
    Block block;
    for (const Case& c : cases) {
        float alpha = -1;
        clear_region(clear_region_params(block.controls), subject.pixels(), nullptr,
                     {c.holdout, c.crude, c.garbage}, &alpha, 1);
        EXPECT_EQ(alpha, c.expected);
    }
}

TEST(ClearRegion, AgainstAPlateEachPixelHasItsOwnBacking) {
    Block block;
    const Pixel dim{30, 40, 100};
    const Pixel pixel{34, 44, 100};  // within 5 of the dim plate, outside for the constant backing
    float alpha = -1;
    const RolePixels plate = dim.pixels();
    clear_region(clear_region_params(block.controls), pixel.pixels(), &plate, {nullptr, nullptr, nullptr},
                 &alpha, 1);
    EXPECT_EQ(alpha, 255.0f);
    clear_region(clear_region_params(block.controls), pixel.pixels(), nullptr, {nullptr, nullptr, nullptr},
                 &alpha, 1);
    EXPECT_EQ(alpha, 0.0f);
}

TEST(CrudeMatte, ComparesDominanceWithThePlates) {
    // Tolerance 10: the plate's dominance counts as 130 over role 0 and 110 over role 1.
    const Pixel plate{60, 80, 200};
    const RolePixels plate_pixels = plate.pixels();
    Block block;
    for (const auto& [fg, expected] :
         {std::pair{Pixel{60, 80, 200}, 255.0f}, std::pair{Pixel{60, 80, 191}, 255.0f},
          std::pair{Pixel{60, 80, 189}, 0.0f}, std::pair{Pixel{200, 120, 90}, 0.0f},
          std::pair{Pixel{kNaN, kNaN, kNaN}, 255.0f}}) {
        float alpha = -1;
        crude_matte(crude_matte_params(block.controls), fg.pixels(), plate_pixels, &alpha, 1);
        EXPECT_EQ(alpha, expected) << fg.primary;
    }
}

TEST(SubRegion, SubjectIsWhereTheExcessOutweighsThePrimary) {
    // Darks 0, brights 200: excess of role i is (200 c - p b) / (200 - b); 255 where p < 2 * the larger.
    Block block;
    block.controls.set(controls::kFilmDarks, 0);
    for (const auto& [fg, expected] :
         {std::pair{Pixel{60, 80, 200}, 0.0f}, std::pair{Pixel{200, 180, 90}, 255.0f},
          std::pair{Pixel{200, 60, 90}, 255.0f}, std::pair{Pixel{kNaN, 40, 90}, 0.0f}}) {
        float alpha = -1;
        sub_region(sub_region_params(block.controls), fg.pixels(), &alpha, 1);
        EXPECT_EQ(alpha, expected) << fg.role0 << ' ' << fg.role1;
    }
}

TEST(Islands, CountDisagreeingNeighbours) {
    using namespace Zo::Image;
    // Rows from the bottom; edges repeat, so a corner pixel is its own neighbour.
    const float picture[4][5] = {
        {0, 255, 255, 255, 255}, {255, 255, 255, 255, 255}, {255, 255, 0, 255, 0}, {255, 255, 255, 0, 0}};
    struct Case {
        int threshold, x, y;
        float expected;
    };
    const Case cases[] = {
        {6, 2, 2, 255},                                // 7 of 8 neighbours are 255
        {8, 2, 2, 0},   {7, 2, 2, 255}, {6, 0, 0, 0},  // a corner sees itself three times: 5 disagree
        {5, 0, 0, 255}, {6, 4, 2, 0},   {1, 1, 1, 0}, {0, 2, 2, 0}, {9, 2, 2, 0}};
    test::FunctionSource source({0, 0, 5, 4}, kMaskRgba,
                                [&](Channel c, int x, int y) { return c == kAlpha ? picture[y][x] : 7.0f; });
    for (const Case& c : cases) {
        Block block;
        block.controls.set(controls::kRotoOrphans, c.threshold);
        VlxComputeIsland op(NodeContext{}, &block.controls);
        op.set_input(0, &source);
        op.setup();
        const test::Picture out = test::render(op, 2);
        EXPECT_EQ(out.at(kAlpha, c.x, c.y), c.expected) << c.threshold << " at " << c.x << ',' << c.y;
        EXPECT_EQ(out.at(kRed, 1, 1), 7.0f);
    }
}

TEST(ClearRegion, ReadsOptionalInputsOnlyWhenTheirFlagIsSet) {
    using namespace Zo::Image;
    const auto backing = [](Channel c, int, int) {
        return c == kAlpha ? 0.0f : c == kRed ? 60.0f : c == kGreen ? 80.0f : 200.0f;
    };
    test::FunctionSource fg({0, 0, 4, 2}, kMaskRgba, backing);
    test::FunctionSource holdout({0, 0, 4, 2}, kMaskAlpha,
                                 [](Channel, int x, int) { return x == 1 ? 1.0f : 0.0f; });
    Block block;
    VlxClearRegion op(NodeContext{}, &block.controls);
    op.set_input(0, &fg);
    op.set_input(3, &holdout);
    op.setup();
    EXPECT_EQ(test::render(op).at(kAlpha, 1, 0), 255.0f);
    EXPECT_EQ(holdout.rows(), 0);
    block.controls.set(controls::kHoldout, 1);
    op.setup();
    EXPECT_EQ(test::render(op).at(kAlpha, 1, 0), 0.0f);
    EXPECT_EQ(test::render(op).at(kAlpha, 2, 0), 255.0f);
}

}  // namespace
