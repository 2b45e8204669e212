// Clean plates: medians and shifts worked out by hand, and whole sequences whose empty set is known.
#include "shot/cleanplate/CleanPlate.h"

#include <cmath>

#include "shot/Files.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

TEST(PlateSamples, MedianOfEachChannel) {
    PlateSamples samples(3, 5);
    const std::array<float, 3> given[] = {{3, 1, 9}, {NAN, 0, 0}, {1, -2, 7}, {2, 5, 8}, {8, 0.5f, 8}};
    for (const auto& color : given) samples.add(1, color);
    samples.add(2, {4, 5, 6});
    EXPECT_EQ(samples.count(0), 0);
    EXPECT_EQ(samples.count(1), 4);
    EXPECT_EQ(samples.median(1), (std::array<float, 3>{2.5f, 0.75f, 8.0f}));
    samples.add(1, {9, 9, 9});
    EXPECT_EQ(samples.median(1), (std::array<float, 3>{3.0f, 1.0f, 8.0f}));
    EXPECT_EQ(samples.median(2), (std::array<float, 3>{4, 5, 6}));
}

// A set with folds across and along it, seen from (x, y) farther left and down.
Image folds(double x, double y, double light) {
    return test::image_of({0, 0, 240, 160}, {0, 0, 240, 160}, kMaskRgb, [&](Channel, int column, int row) {
        const double u = column - x, v = row - y;
        return static_cast<float>(light *
                                  (0.5 + 0.1 * std::sin(u / 9.0 + v / 31.0) + 0.05 * std::cos(v / 12.0)));
    });
}

TEST(Registration, MeasuresShiftsOfTheBacking) {
    const std::vector<std::uint8_t> clear(240 * 160, 1);
    const BackingDetail first = backing_detail(folds(0, 0, 1), kGreen, clear);
    const struct {
        double x, y, light;
        bool above;
    } cases[] = {{0, 0, 1, false}, {0.3, 0, 0.9, false}, {1.5, -0.5, 1, true}, {-3, 2, 1.2, true}};
    for (const auto& c : cases) {
        Image other = folds(c.x, c.y, c.light);
        // Something else happens in a fifth of the frame.
        std::for_each(other.line(kGreen, 0), other.line(kGreen, 30), [](float& v) { v *= 0.7f; });
        const Shift shift = shift_between(first, backing_detail(other, kGreen, clear));
        ASSERT_TRUE(shift.known);
        EXPECT_NEAR(shift.x, c.x, 0.1 + 0.1 * std::fabs(c.x));
        EXPECT_NEAR(shift.y, c.y, 0.1 + 0.1 * std::fabs(c.y));
        EXPECT_EQ(shift.above_bound(), c.above) << c.x;
    }
    const std::vector<std::uint8_t> hidden(240 * 160, 0);
    EXPECT_FALSE(shift_between(first, backing_detail(folds(3, 0, 1), kGreen, hidden)).known);
    const BackingDetail nothing = backing_detail(folds(0, 0, 0), kGreen, clear);
    EXPECT_FALSE(shift_between(nothing, nothing).known);
}

// Frames of a green set with soft folds before which a red block wanders; its middle columns are never free.
// One frame in seven is brighter, which a median does not see.
class CleanPlateTest : public test::Files {
  protected:
    static constexpr int kWidth = 120, kHeight = 80, kFrames = 7;

    CleanPlateTest() {
        for (int frame = 1; frame <= kFrames; ++frame) write(frame, 0);
        caller_.warn = [this](const std::string& line) { warnings_.push_back(line); };
    }

    static float truth(Channel c, int x, int y) {
        const float light = 0.9f + 0.08f * std::sin(static_cast<float>(x) / 8.0f) +
                            0.04f * std::cos(static_cast<float>(y) / 7.0f);
        return light * (c == kGreen ? 0.625f : c == kBlue ? 0.25f : 0.15f);
    }
    // Columns that the block covers.
    static int left(int frame) { return 34 + 4 * frame; }
    static int right(int frame) { return left(frame) + 40; }

    void write(int frame, int shift) const {
        const Box box{0, 0, kWidth, kHeight};
        const Image image = test::image_of(box, box, kMaskRgb, [&](Channel c, int x, int y) {
            const bool block = x >= left(frame) && x < right(frame) && y < 60;
            const float backing = truth(c, x - shift, y) * (frame == 5 ? 1.04f : 1.0f);
            return block ? (c == kRed ? 0.8f : 0.1f) : backing;
        });
        write_image(pattern().at(frame), image, {.depth = Depth::FLOAT, .overwrite = true});
    }
    PictureName pattern() const { return PictureName(file("fg.%04d.exr")); }

    Image make(const FrameRange& frames, const CleanPlateLimits& limits,
               const char* color = "0.135,0.5625,0.225") {
        CleanPlateMaker maker(pattern(), frames, limits, caller_);
        maker.node().panel().set_from_text("screen_color", color);
        Image plate = maker.make();
        report_ = maker.report();
        return plate;
    }

    Caller caller_;
    std::vector<std::string> warnings_;
    CleanPlateReport report_;
};

TEST_F(CleanPlateTest, MediansWhereSeenAndInterpolatedElsewhere) {
    const Image plate = make({1, kFrames, 1}, {1});
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const bool hidden = x >= left(kFrames) && x < right(1) && y < 60;
            // Seen in two frames or more beyond the shrunk border; the interpolation carries a fold along.
            const bool surely = x < left(kFrames - 1) - 3 || x >= right(2) + 3 || y >= 63;
            // Seen in all frames or all but one: the bright one is out of the middle.
            const bool always = x < left(1) - 4 || x >= right(kFrames) + 4;
            for (const Channel c : kMaskRgb) {
                const float tolerance = always ? 1e-6f : surely && !hidden ? 0.013f : 0.15f;
                ASSERT_NEAR(plate.line(c, y)[x], truth(c, x, y), tolerance) << c << ' ' << x << ' ' << y;
            }
        }
    }
    // Columns 62 to 77 are covered in every frame below row 60; the region keeps off the block by its shrink.
    constexpr double kMost = 1.0 - 16.0 * 60.0 / (kWidth * kHeight);
    EXPECT_LE(report_.seen, kMost);
    EXPECT_GT(report_.seen, kMost - 0.05);
    EXPECT_EQ(report_.compared, kFrames - 1);
    EXPECT_LT(report_.largest.length(), 0.2);
    EXPECT_EQ(report_.region, "shrinkScreen");

    // Eight rows at a time, more threads, and a frame that is missing.
    const std::size_t row = kWidth * (kFrames + 1) * PlateSamples::kBytesPerSample;
    const Image again = make({0, kFrames, 1}, {2, 8 * row});
    for (const Channel c : kMaskRgb)
        EXPECT_TRUE(std::equal(plate.line(c, 0), plate.line(c, kHeight), again.line(c, 0)));
    EXPECT_EQ(report_.failed, 1);
    EXPECT_EQ(report_.frames, kFrames);
    ASSERT_EQ(warnings_.size(), 1U);
    EXPECT_EQ(warnings_[0], file("fg.0000.exr") + ": does not exist");
}

TEST_F(CleanPlateTest, RefusesWhatShowsNoBackingAndTellsWhenTheCameraMoved) {
    EXPECT_THROW(make({50, 51, 1}, {1}), Error);
    EXPECT_THROW(make({1, 2, 1}, {1}, "0.1,0.2,0.9"), Error);
    warnings_.clear();
    write(4, 2);
    make({1, kFrames, 1}, {1});
    EXPECT_EQ(report_.largest_frame, 4);
    EXPECT_TRUE(report_.largest.above_bound());
    EXPECT_NEAR(report_.largest.x, 2.0, 0.6);
    ASSERT_EQ(warnings_.size(), 1U);
    EXPECT_TRUE(warnings_[0].starts_with(file("fg.0004.exr") + ": warning: the backing is shifted"));
}

}  // namespace
