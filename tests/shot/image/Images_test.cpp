// What is measured of images, and how one is brought to another's size.

#include <cmath>

#include "shot/Files.h"
#include "shot/compare/Compare.h"
#include "shot/frames/Fit.h"
#include "shot/setup/ScreenChoice.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

// Red pixels, row by row upward, of a data window in a display window.
Image red(const Box& box, const Box& frame, const std::vector<float>& pixels) {
    auto next = pixels.begin();
    return test::image_of(box, frame, kRed, [&](Channel, int, int) { return *next++; });
}

TEST(Compare, LargestMeanAndPsnr) {
    const Box box{0, 0, 2, 2};
    const Difference d = difference(red(box, box, {0, 1, 2, 3}), red(box, box, {0, 1.5f, 2, 2}), kRed);
    EXPECT_EQ(d.largest, 1.0);
    EXPECT_EQ(d.mean(), 1.5 / 4);
    EXPECT_DOUBLE_EQ(d.psnr(), 10.0 * std::log10(4 / 1.25));
}

TEST(Compare, EqualOddValuesAreEqualAndOthersInfinitelyFar) {
    const Box box{0, 0, 1, 1};
    constexpr float inf = INFINITY;
    const struct {
        float a, b;
        double largest;
    } cases[] = {{NAN, NAN, 0}, {inf, inf, 0},    {0, -0.0f, 0},   {NAN, 1, inf},
                 {1, NAN, inf}, {inf, -inf, inf}, {inf, NAN, inf}, {inf, 1, inf}};
    for (const auto& c : cases) {
        const Difference d = difference(red(box, box, {c.a}), red(box, box, {c.b}), kRed);
        EXPECT_EQ(d.largest, c.largest) << c.a << ' ' << c.b;
        EXPECT_EQ(d.psnr(), c.largest > 0 ? -inf : inf) << c.a << ' ' << c.b;
    }
}

TEST(Compare, MissingPixelsAndChannelsCountAsZero) {
    const Box frame{0, 0, 4, 1};
    const Image a = red({0, 0, 2, 1}, frame, {1, 2});
    const Image b = red({1, 0, 3, 1}, frame, {2, 5});
    const Difference d = difference(a, b, kRed);
    EXPECT_EQ(d.count, 3);
    EXPECT_EQ(d.sum, 6.0);  // 1, 0, 5
    EXPECT_EQ(difference(a, b, kAlpha).largest, 0.0);
}

// Rows y = 0 and 1 of columns -1 to 1 in a frame of 3 x 4.
const Box kData{-1, 0, 2, 2};
const Box kSmall{0, 0, 3, 4};

TEST(Pick, MeanOfABoxRepeatsEdgesOfTheData) {
    const Image image = red(kData, kSmall, {10, 20, 30, 40, 50, 60});
    EXPECT_EQ(mean_color(image, {0, 0, 2, 2})[0], (20 + 30 + 50 + 60) / 4.0);
    EXPECT_EQ(mean_color(image, {1, 1, 3, 3})[0], 60.0);
    EXPECT_EQ(mean_color(image, {0, 0, 1, 1})[1], 0.0) << "no green";
    EXPECT_THROW(mean_color(image, {2, 0, 4, 1}), UsageError);
    EXPECT_THROW(mean_color(red(kData, kSmall, {1, NAN, 1, 1, 1, 1}), {0, 0, 2, 2}), Error);
}

TEST(Pick, ReadsBoxes) {
    EXPECT_EQ(parse_box("--pick", "1,2,30,40"), (Box{1, 2, 30, 40}));
    for (const char* text :
         {"", "1,2,3", "1,2,3,4,5", "1 2 3 4", "a,2,3,4", "1,2,3,4 ", "5,0,5,9", "0,9,9,0"}) {
        EXPECT_THROW(parse_box("--pick", text), UsageError) << text;
    }
}

TEST(Fit, PlacesOtherSizes) {
    const auto value = [](Channel c, int, int) { return 8.0f * static_cast<float>(c); };
    const auto image = std::make_shared<const Image>(test::image_of(kData, kSmall, kMaskRgb, value));
    Format format;
    format.box = {0, 0, 6, 8};
    EXPECT_EQ(fitted(image, image->info.format, Fit::kRefuse, "f"), image);
    EXPECT_EQ(fitted(image, format, Fit::kNone, "f"), image);
    EXPECT_EQ(fitted(image, format, Fit::kCrop, "f")->info.box, (Box{0, 2, 3, 4})) << "moved by (1.5, 2)";
    const auto resized = fitted(image, format, Fit::kResize, "f");
    EXPECT_EQ(resized->info.box, (Box{-2, 0, 6, 8})) << "the whole frame and what stands out";
    EXPECT_EQ(resized->info.format.box, format.box);
    for (const Channel c : kMaskRgb) {
        EXPECT_THAT(std::vector<float>(resized->line(c, 5), resized->line(c, 6)),
                    testing::Each(testing::FloatNear(value(c, 0, 0), 1e-5f)));
    }
    EXPECT_THAT([&] { fitted(image, format, Fit::kRefuse, "f.exr"); },
                testing::ThrowsMessage<Error>(testing::MatchesRegex("f.exr: .*3x4.*6x8.*")));
}

}  // namespace
