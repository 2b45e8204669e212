// Clean plates: medians and shifts worked out by hand, and whole sequences whose empty set is known.
#include "CleanPlate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>

#include "Errors.h"
#include "PlateSet.h"

using namespace veloxa;
using namespace Zo::Image;
namespace fs = std::filesystem;

namespace {

TEST(PlateSamples, MedianOfEachChannel) {
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    PlateSamples samples(3, 5);
    const std::array<float, 3> given[] = {{3, 1, 9}, {kNaN, 0, 0}, {1, -2, 7}, {2, 5, 8}, {8, 0.5f, 8}};
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
    Info info;
    info.box = info.format.box = {0, 0, 240, 160};
    info.channels = kMaskRgb;
    Image image(info);
    for (int row = 0; row < 160; ++row) {
        for (int column = 0; column < 240; ++column) {
            const double u = column - x, v = row - y;
            const double level = 0.5 + 0.1 * std::sin(u / 9.0 + v / 31.0) + 0.05 * std::cos(v / 12.0);
            image.line(kGreen, row)[column] = static_cast<float>(light * level);
        }
    }
    return image;
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
        for (int row = 0; row < 30; ++row) {
            for (int column = 0; column < 240; ++column) other.line(kGreen, row)[column] *= 0.7f;
        }
        const Shift shift = shift_between(first, backing_detail(other, kGreen, clear));
        ASSERT_TRUE(shift.known);
        EXPECT_NEAR(shift.x, c.x, 0.1 + 0.1 * std::fabs(c.x));
        EXPECT_NEAR(shift.y, c.y, 0.1 + 0.1 * std::fabs(c.y));
        EXPECT_EQ(shift.above_bound(), c.above) << c.x;
    }
    const std::vector<std::uint8_t> hidden(240 * 160, 0);
    EXPECT_FALSE(shift_between(first, backing_detail(folds(3, 0, 1), kGreen, hidden)).known);
    Image flat = folds(0, 0, 0);
    const BackingDetail nothing = backing_detail(flat, kGreen, clear);
    EXPECT_FALSE(shift_between(nothing, nothing).known);
}

// Frames of a green set with soft folds before which a red block wanders; its middle column of cells is never
// free. One frame in five is brighter, which a median does not see.
class CleanPlateTest : public testing::Test {
  protected:
    static constexpr int kWidth = 120, kHeight = 80, kFrames = 7;

    CleanPlateTest() {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        for (int frame = 1; frame <= kFrames; ++frame) write(frame, 0);
    }
    ~CleanPlateTest() override { fs::remove_all(folder_); }

    static float truth(Channel c, int x, int y) {
        const float light = 0.9f + 0.08f * std::sin(static_cast<float>(x) / 8.0f) +
                            0.04f * std::cos(static_cast<float>(y) / 7.0f);
        return light * (c == kGreen ? 0.625f : c == kBlue ? 0.25f : 0.15f);
    }
    // Columns that the block covers.
    static int left(int frame) { return 34 + 4 * frame; }
    static int right(int frame) { return left(frame) + 40; }

    void write(int frame, int shift) const {
        Info info;
        info.box = info.format.box = {0, 0, kWidth, kHeight};
        info.channels = kMaskRgb;
        Image image(info);
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const bool block = x >= left(frame) && x < right(frame) && y < 60;
                for (const Channel c : kMaskRgb) {
                    const float backing = truth(c, x - shift, y) * (frame == 5 ? 1.04f : 1.0f);
                    image.line(c, y)[x] = block ? (c == kRed ? 0.8f : 0.1f) : backing;
                }
            }
        }
        write_image(pattern().at(frame), image, {Depth::kFloat, true, nullptr});
    }
    FramePattern pattern() const { return FramePattern((folder_ / "fg.%04d.exr").string()); }

    Image make(CleanPlateMaker& maker) const {
        maker.node().panel().set_from_text("screen_color", "0.135,0.5625,0.225");
        return maker.make();
    }

    // Tests run side by side.
    const fs::path folder_ =
        fs::path(testing::TempDir()) /
        (std::string("clean_plate_") + testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(CleanPlateTest, MediansWhereSeenAndInterpolatedElsewhere) {
    CleanPlateMaker maker(pattern(), {1, kFrames, 1}, {1, std::size_t{1} << 30, true, nullptr});
    const Image plate = make(maker);
    // Columns 62 to 77 are covered in every frame below row 60.
    int never = 0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const bool hidden = x >= left(kFrames) && x < right(1) && y < 60;
            never += hidden ? 1 : 0;
            // Seen in two frames or more beyond the shrunk border; the interpolation carries a fold along.
            const bool surely = x < left(kFrames - 1) - 3 || x >= right(2) + 3 || y >= 63;
            for (const Channel c : kMaskRgb) {
                const float tolerance = hidden ? 0.15f : surely ? 0.013f : 0.15f;
                ASSERT_NEAR(plate.line(c, y)[x], truth(c, x, y), tolerance) << c << ' ' << x << ' ' << y;
            }
            // Seen in all frames or all but one: the bright one is out of the middle.
            if (x < left(1) - 4 || x >= right(kFrames) + 4) {
                ASSERT_NEAR(plate.line(kGreen, y)[x], truth(kGreen, x, y), 1e-6f) << x << ' ' << y;
            }
        }
    }
    const CleanPlateReport& report = maker.report();
    const double most = 1.0 - static_cast<double>(never) / (kWidth * kHeight);
    EXPECT_LE(report.seen, most);
    EXPECT_GT(report.seen, most - 0.05);  // the region keeps off the block by its shrink
    EXPECT_EQ(report.frames, kFrames);
    EXPECT_EQ(report.failed, 0);
    EXPECT_EQ(report.compared, kFrames - 1);
    EXPECT_LT(report.largest.length(), 0.2);
    EXPECT_EQ(report.region, "shrinkScreen");
}

TEST_F(CleanPlateTest, StripsChangeNothingAndBadFramesAreLeftOut) {
    CleanPlateMaker whole(pattern(), {1, kFrames, 1}, {1, std::size_t{1} << 30, true, nullptr});
    const Image plate = make(whole);
    // Seven rows at a time, and the frames once more than there are good ones.
    const std::size_t row = kWidth * (kFrames + 1) * PlateSamples::kBytesPerSample;
    CleanPlateMaker strips(pattern(), {0, kFrames, 1}, {2, 8 * row, true, nullptr});
    const Image again = make(strips);
    for (const Channel c : kMaskRgb) {
        EXPECT_EQ(std::memcmp(plate.plane(c).get(), again.plane(c).get(), sizeof(float) * kWidth * kHeight),
                  0);
    }
    EXPECT_EQ(strips.report().failed, 1);
    EXPECT_EQ(strips.report().frames, kFrames);

    EXPECT_THROW(CleanPlateMaker(pattern(), {50, 51, 1}, {1, row, true, nullptr}), Error);
    CleanPlateMaker blind(pattern(), {1, 2, 1}, {1, row, true, nullptr});
    blind.node().panel().set_from_text("screen_color", "0.1,0.2,0.9");
    EXPECT_THROW(blind.make(), Error);
}

TEST_F(CleanPlateTest, TellsWhenTheCameraMoved) {
    write(4, 2);
    CleanPlateMaker maker(pattern(), {1, kFrames, 1}, {1, std::size_t{1} << 30, true, nullptr});
    make(maker);
    EXPECT_EQ(maker.report().largest_frame, 4);
    EXPECT_TRUE(maker.report().largest.above_bound());
    EXPECT_NEAR(maker.report().largest.x, 2.0, 0.6);
}

// A procedural shot: the set behind the figure is known, and its contact shadow is no part of it.
TEST_F(CleanPlateTest, ProceduralShot) {
    const plate::Options options{320, 180, 3, plate::Screen::kGreen};
    for (int frame = 1; frame <= 3; ++frame) {
        const plate::Set set = plate::render_set(options, 40 * frame, 2);
        write_image(pattern().at(frame), set[plate::kForeground], {Depth::kHalf, true, nullptr});
    }
    CleanPlateMaker maker(pattern(), {1, 3, 1}, {2, std::size_t{1} << 30, true, nullptr});
    maker.node().panel().set_from_text("screen_color", "0.14,0.567,0.243");
    const Image plate = maker.make();
    double squares = 0.0;
    plate::Scene(options, 40).render(0, 180, [&](int row, const std::vector<plate::Pixel>& pixels) {
        for (int x = 0; x < 320; ++x) {
            const auto& truth = pixels[static_cast<std::size_t>(x)].backing;
            const double error = static_cast<double>(plate.line(kGreen, 179 - row)[x] - truth.y);
            squares += error * error;
        }
    });
    EXPECT_GT(maker.report().seen, 0.6);
    EXPECT_LT(maker.report().largest.length(), 0.25);
    EXPECT_LT(std::sqrt(squares / (320 * 180)), 0.05);
}

}  // namespace
