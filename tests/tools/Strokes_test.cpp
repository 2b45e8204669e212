// The pixels that stand for strokes.
#include "tools/Strokes.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/TestImages.h"

using namespace test;

namespace {

TEST(StrokePixels, AreThoseOfTheBoxThatCount) {
    const Box frame{0, 0, 400, 400};
    const auto place = [](Channel c, int x, int y) {
        if (x == 3 && y == 3 && c == kBlue) return std::numeric_limits<float>::quiet_NaN();
        return static_cast<float>(c == kRed ? x : y);
    };
    FunctionSource image(frame, kMaskRgba, place);
    FunctionSource even(frame, kMaskRgba, [](Channel, int x, int) { return x % 2 == 0 ? 1.0f : 0.0f; });
    const struct {
        std::vector<Box> areas;
        Iop* keep;
        std::size_t count;
        float last_x, last_y;
    } cases[] = {
        {{{1, 2, 6, 5}}, nullptr, 14, 5.0f, 4.0f},  // but for the one that is no number
        {{{1, 2, 6, 5}}, &even, 6, 4.0f, 4.0f},
        {{{1, 2, 6, 5}, {4, 1, 8, 4}, {9, 9, 9, 12}}, nullptr, 22, 5.0f, 4.0f},  // four are in both
        {{{0, 0, 331, 301}}, nullptr, 111 * 101 - 1, 330.0f, 300.0f},            // every third
        {{{0, 0, 331, 301}, {1, 0, 2, 301}, {331, 302, 400, 305}},
         nullptr,
         111 * 101 - 1 + 23,
         399.0f,
         303.0f},
    };
    for (const auto& c : cases) {
        const std::vector<StrokePixel> pixels =
            read_pixels(image, nullptr, c.keep, StrokeAreas(c.areas), nullptr);
        ASSERT_EQ(pixels.size(), c.count);
        EXPECT_EQ(pixels.back().first, (VeloxaSample::Sample{c.last_x, c.last_y, c.last_y, c.last_y}));
    }
}

// Three pixels a stroke, of which the inner one is no extreme in any direction.
TEST(Strokes, TakeInWhatTheAnswerLeavesOut) {
    const auto pixel = [](float red) { return PlatedSample{{red, 0.5f, 0.5f, 0.0f}, {}}; };
    const auto stroke = [&](float from) {
        return std::vector<PlatedSample>{pixel(from), pixel(from + 0.01f), pixel(from + 0.02f)};
    };
    const auto reds = [](const auto& samples) {
        std::vector<float> list;
        for (const PlatedSample& s : samples) list.push_back(s.fg[0]);
        return list;
    };
    const auto without = [&](float red) {
        return [&reds, red](const std::vector<PlatedSample>& pixels) {
            std::vector<bool> right;
            for (const float r : reds(pixels)) right.push_back(r != red);
            return right;
        };
    };
    const float old = 0.1f + 0.01f;
    const float fresh = 0.2f + 0.01f;
    Strokes<PlatedSample> strokes;
    strokes.begin(stroke(0.1f));
    strokes.begin(stroke(0.2f));
    const std::vector<float> ends{0.1f, 0.1f + 0.02f, 0.2f, 0.2f + 0.02f};
    EXPECT_EQ(reds(strokes.samples()), ends);
    EXPECT_FALSE(strokes.take_missed(without(7.0f)));
    EXPECT_TRUE(strokes.take_missed(without(fresh)));  // before its own stroke's, behind the older one's
    EXPECT_TRUE(strokes.take_missed(without(old)));    // before all
    EXPECT_FALSE(strokes.take_missed(without(old)));
    EXPECT_EQ(reds(strokes.samples()), (std::vector<float>{old, ends[0], ends[1], fresh, ends[2], ends[3]}));
}

}  // namespace
