// The clear-region kernels and the removal of islands, against values worked out by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "screen/ClearRegionKernel.h"
#include "screen/CrudeMatteKernel.h"
#include "screen/SubRegionKernel.h"
#include "screen/VlxComputeIsland.h"
#include "support/StageControls.h"

using test::StageControls;

namespace {

using Pixel = std::array<float, 3>;  // role order
constexpr Pixel kBacking{60, 80, 200};

RolePixels pixels(const Pixel& p) {
    return {&p[0], &p[1], &p[2]};
}

// Against kBacking, with one more control set; the tolerances are 5, 5 and 10.
float clear(const Pixel& fg, int control = 29, int value = 100, const RolePixels* plate = nullptr,
            const ClearRegionMattes& mattes = {}) {
    const StageControls controls{{75, 60}, {76, 80}, {77, 200}, {control, value}};
    float alpha = -1;
    clear_region(clear_region_params(controls.block), pixels(fg), plate, mattes, &alpha, 1);
    return alpha;
}

TEST(ClearRegion, BothSecondariesMustPass) {
    // The levels are 65 and 85 at 200, half of that at 100.
    // Brighter by 20: content (90 * 200 - 220 * 65) / 135 of role 0 is 27.4, and 17.4 of role 1 at
    // (103.5 * 200 - 220 * 85) / 115.
    // Darks of 10 per cent lift the dark end by 255 * 0.1 * 115 / 200 for role 1, * 135 / 200 for role 0, so
    // by 7.33 and 8.61 at half the brightness.
    const struct {
        float role0, role1, primary, expected;
        int control, value;
    } cases[] = {
        {60, 80, 200, 255, 29, 100},   {64.9f, 84.9f, 200, 255, 29, 100}, {65.1f, 60, 200, 0, 29, 100},
        {60, 85.1f, 200, 0, 29, 100},  {32, 42, 100, 255, 29, 100},       {33, 40, 100, 0, 29, 100},
        {30, 43, 100, 0, 29, 100},     {-5, -5, 0, 255, 29, 100},         {0, 0, 0, 0, 29, 100},
        {60, 80, NAN, 0, 29, 100},     {NAN, 80, 200, 0, 29, 100},        {75, 95, 220, 255, 29, 100},
        {90, 80, 220, 0, 29, 100},     {90, 80, 220, 255, 31, 50},        {60, 103.5f, 220, 255, 29, 100},
        {60, 103.5f, 220, 0, 29, 120}, {30, 49.8f, 100, 255, 30, 10},     {30, 49.9f, 100, 0, 30, 10},
        {41.0f, 40, 100, 255, 32, 10}, {41.2f, 40, 100, 0, 32, 10},       {67, 80, 200, 255, 37, 8}};
    for (const auto& c : cases) {
        EXPECT_EQ(clear({c.role0, c.role1, c.primary}, c.control, c.value), c.expected) << &c - cases;
    }
}

TEST(ClearRegion, PlateAndMattesComeBeforeTheConstantBacking) {
    const Pixel dim{30, 40, 100};
    const RolePixels plate = pixels(dim);
    EXPECT_EQ(clear({34, 44, 100}), 0.0f);
    EXPECT_EQ(clear({34, 44, 100}, 29, 100, &plate), 255.0f);  // within 5 of the dim plate
    EXPECT_EQ(clear({37, 44, 100}, 37, 8, &plate), 255.0f);
    // Exactly as bright as the plate: the test for brighter pixels decides, or the one for darker pixels.
    EXPECT_EQ(clear({30, 90, 100}, 29, 0, &plate), 255.0f);
    EXPECT_EQ(clear({30, 40, 100}, 29, -100, &plate), 255.0f);
    const float no = 0, yes = 0.25f, nan = NAN;
    const struct {
        ClearRegionMattes mattes;  // holdout, crude, garbage
        float expected;
    } cases[] = {{{&no, &no, &yes}, 255}, {{&no, &yes, &no}, 255},    {{&yes, &yes, &yes}, 0},
                 {{&no, &no, &no}, 0},    {{&nan, nullptr, &yes}, 0}, {{nullptr, &nan, nullptr}, 255}};
    for (const auto& c : cases) EXPECT_EQ(clear({200, 120, 90}, 29, 100, nullptr, c.mattes), c.expected);
}

TEST(CrudeMatte, ComparesDominanceWithThePlates) {
    // Tolerance 10: the plate's dominance counts as 130 over role 0 and 110 over role 1.
    const StageControls controls{{39, 10}};
    const std::pair<Pixel, float> cases[] = {{kBacking, 255},     {{60, 80, 191}, 255}, {{60, 80, 189}, 0},
                                             {{62, 60, 191}, 0},  {{50, 82, 191}, 0},   {{200, 120, 90}, 0},
                                             {{NAN, NAN, 9}, 255}};
    for (const auto& [fg, expected] : cases) {
        float alpha = -1;
        crude_matte(crude_matte_params(controls.block), pixels(fg), pixels(kBacking), &alpha, 1);
        EXPECT_EQ(alpha, expected) << fg[0] << ' ' << fg[1] << ' ' << fg[2];
    }
}

TEST(SubRegion, SubjectIsWhereTheExcessOutweighsThePrimary) {
    // Twice the excesses (200 c - 90 * 60) / 140 of role 0 and (200 c - 90 * 80) / 120 of role 1 against 90.
    // Warm and cool: the excesses are 33.1 and 0.8, then 0.1 and 43.3, the whole part of the smaller is 0.
    // Darks of 10 per cent: a threshold of 255 * 0.1 * 140 / 200 = 17.85 makes role 0's excess
    // (200 (c - 17.85) - 90 * 42.15) / (0.93 * 200 - 42.15), 44.9 and 45.1.
    const struct {
        float role0, role1, expected;
        int darks, cool, warm;
    } cases[] = {{18, 24, 0, 0, 0, 0},
                 {58, 62, 0, 0, 0, 0},
                 {59, 62, 255, 0, 0, 0},
                 {58, 64, 255, 0, 0, 0},
                 {NAN, 62, 0, 0, 0, 0},
                 {50.2f, 36.5f, 0, 0, 100, 70},
                 {50.2f, 36.5f, 255, 0, 100, 73},
                 {27.1f, 62, 0, 0, 7, 100},
                 {27.1f, 62, 255, 0, 8, 100},
                 {69.1f, 10, 0, 10, 0, 0},
                 {69.3f, 10, 255, 10, 0, 0}};
    for (const auto& c : cases) {
        const StageControls controls{{75, 60},     {76, 80},    {77, 200},  {4, 200},
                                     {5, c.darks}, {6, c.cool}, {7, c.warm}};
        const Pixel fg{c.role0, c.role1, 90};
        float alpha = -1;
        sub_region(sub_region_params(controls.block), pixels(fg), &alpha, 1);
        EXPECT_EQ(alpha, c.expected) << &c - cases;
    }
}

TEST(Islands, CountDisagreeingNeighbours) {
    using namespace Zo::Image;
    // Rows from the bottom; edges repeat, so a corner pixel is its own neighbour three times.
    const float picture[4][5] = {
        {0, 255, 255, 255, 255}, {255, 255, 255, 255, 255}, {255, 255, 0, 255, 0}, {255, 255, 255, 0, 0}};
    const struct {
        int threshold, x, y;
        float expected;
    } cases[] = {{8, 2, 2, 0},   {7, 2, 2, 255}, {6, 0, 0, 0},  {5, 0, 0, 255}, {5, 4, 2, 0},
                 {4, 4, 2, 255}, {1, 1, 1, 0},   {2, 1, 1, 0},  {3, 1, 1, 255}, {0, 2, 2, 0},
                 {9, 2, 2, 0},   {3, 3, 2, 0},   {5, 3, 2, 255}};
    test::FunctionSource source({0, 0, 5, 4}, kMaskRgba,
                                [&](Channel c, int x, int y) { return c == kAlpha ? picture[y][x] : 7.0f; });
    for (const auto& c : cases) {
        StageControls controls{{232, c.threshold}};
        VlxComputeIsland op(NodeContext{}, &controls.block);
        op.set_input(0, &source);
        op.setup();
        const test::Picture out = test::render(op, 2);
        EXPECT_EQ(out.at(kAlpha, c.x, c.y), c.expected) << c.threshold << " at " << c.x << ',' << c.y;
        EXPECT_EQ(out.at(kRed, 1, 1), 7.0f);
    }
    StageControls controls{{232, 3}};
    VlxComputeIsland op(NodeContext{}, &controls.block);
    test::FunctionSource unread({0, 0, 5, 4}, kMaskRgba, [](Channel, int, int) { return 0.0f; });
    op.set_input(0, &unread);
    op.request(2, 1, 3, 2, kMaskAlpha, 1);
    EXPECT_EQ(unread.requested().box, (Box{1, 0, 4, 3}));
}

}  // namespace
