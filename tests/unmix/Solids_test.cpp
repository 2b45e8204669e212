// Where a subject is surely opaque, and what is left to be solved.
#include <gtest/gtest.h>

#include "unmix/Picture.h"
#include "unmix/Region.h"

using namespace unmix;
using namespace test;

namespace {

// Of a ramp of width w the foot at 0.35 and the inside at 0.66 are 0.31 w apart: solid is what lies twice as
// deep below the latter, and 1.5 at the least.
TEST(Solids, KeepFromSoftEdgesByTwiceTheirWidth) {
    for (const float width : {0.0f, 10.0f, 20.0f, 30.0f}) {
        Picture p(320, 320, [&](int x, int y) {
            return mix(kGrey, kGreen, ramp(away_from(x, y, 160, 160), 110.0f, width));
        });
        p.segment();
        const float edge = 110.0f - 0.16f * width - std::max(0.62f * width, 1.5f);
        each(320, 320, [&](int x, int y) {
            const float away = away_from(x, y, 160, 160);
            const bool solid = p.segmentation.solid(x / 2, y / 2) != 0;
            const bool unknown = p.segmentation.unknown(x, y) != 0;
            ASSERT_TRUE(solid == (away < edge) || std::abs(away - edge) < 6.0f) << width << ": " << away;
            ASSERT_TRUE(unknown || std::abs(away - 110.0f) >= 0.45f * width) << width << ": " << away;
            ASSERT_TRUE(!unknown || away < 120.0f + 0.5f * width) << width << ": " << away;
        });
    }
}

// A disc and, beside it, a square of another opacity.
TEST(Solids, PlateausMattesAndStrokes) {
    constexpr Colour kBrown{0.3f, 0.25f, 0.1f};
    const struct {
        const char* name;
        float alpha;
        int disc_at;  // 120 touches the square
        bool garbage, holdout;
        std::vector<Colour> taught;
        int solid, unknown;
    } cases[] = {
        {"half covered", 0.5f, 120, false, false, {}, 0, 1},
        {"nowhere opaque", 0.8f, 80, false, false, {}, 0, 1},
        {"opaque", 1.0f, 80, false, false, {}, 1, 0},
        {"garbage", 1.0f, 120, true, false, {}, 0, 0},
        {"held out", 0.5f, 120, false, true, {}, 1, 0},
        {"held out backing", 0.0f, 120, false, true, {}, 1, 0},
        {"garbage and held out", 0.5f, 120, true, true, {}, 0, 0},
        {"taught", 0.6f, 80, false, false, {mix(kBrown, kGreen, 0.6f)}, 1, 0},
        {"backing", 0.0f, 80, false, false, {}, 0, 0},
    };
    for (const auto& c : cases) {
        Floats matte(320, 320);
        Picture p(320, 320, [&](int x, int y) {
            const bool square = x >= 200 && x < 280 && y >= 120 && y < 200;
            matte(x, y) = square ? 1.0f : 0.0f;
            const float disc = ramp(away_from(x, y, c.disc_at, 160), 80.0f, 2.0f);
            return square ? mix(kBrown, kGreen, c.alpha) : mix(kGrey, kGreen, disc);
        });
        p.segment(c.garbage ? matte : Floats(), c.holdout ? matte : Floats(), {0.66f, c.taught});
        EXPECT_EQ(p.segmentation.solid(120, 80), c.solid) << c.name;
        EXPECT_EQ(p.segmentation.unknown(240, 160), c.unknown) << c.name;
        EXPECT_EQ(p.segmentation.solid(35, 80), 1) << c.name;
        EXPECT_EQ(p.segmentation.unknown(300, 40), 0) << c.name;
    }
}

// A subject that lacks the screen's colour leads by less than 0, where opacity begins; here the less, the
// further right.
TEST(Solids, RoughOpacityReckonsWithTheSubjectsOwnColour) {
    Picture p(62, 38, [](int x, int) { return x < 44 ? kGreen : mix({0.5f, 0.3f, 0.2f}, kGreen, 0.5f); });
    p.fit();
    const ParallelLoop loop = backward_loop;
    Floats own(16, 10);
    each(16, 10, [&](int x, int y) { own(x, y) = -0.02f * static_cast<float>(x); });
    for (const auto grid : {Region::Grid::kCoarse, Region::Grid::kFine}) {
        Region region(p.backing, grid, loop);
        region.find(&own, 0.66f);
        const float cells = grid == Region::Grid::kCoarse ? 1.0f : 0.5f;
        for (int x = region.width() - 3; x < region.width(); ++x) {
            const float lack = 0.02f * std::min((static_cast<float>(x) + 0.5f) * cells - 0.5f, 15.0f);
            // The half covered leads by 0.15, the backing by 0.45.
            EXPECT_NEAR(region.rough()(x, 4), 1.0f - (0.15f + lack) / (0.45f + lack), 1e-3f) << x;
        }
    }
}

}  // namespace
