#include "picture/BoxStatistics.h"

#include <limits>

#include "shot/Files.h"

using namespace veloxa;
using namespace veloxa::viewer;
using namespace Zo::Image;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

Image ramp() {
    const Box box{-2, 1, 4, 5};
    Image image =
        test::image_of(box, {0, 0, 8, 8}, ChannelSet(kRed) + kGreen + kAlpha, [](Channel c, int x, int y) {
            return static_cast<float>(x + 10 * y) * (c == kGreen ? -1.0f : 1.0f);
        });
    image.line(kAlpha, 2)[3] = kInfinity;                                // (1, 2)
    image.line(kAlpha, 2)[4] = std::numeric_limits<float>::quiet_NaN();  // (2, 2)
    return image;
}

TEST(BoxStatistics, OfThePartThatHasPixels) {
    const BoxStatistics all = statistics(ramp(), {1, 2, 99, 4});  // columns 1 to 3, rows 2 and 3
    EXPECT_EQ(all.pixels, 6);
    EXPECT_EQ(all.broken, 2);
    const double values[4][3]{{21, 33, 27}, {-33, -21, -27}, {0, 0, 0}, {23, 33, 29.75}};
    for (std::size_t c = 0; c < 4; ++c) {
        EXPECT_EQ(static_cast<double>(all.channels[c].least), values[c][0]) << c;
        EXPECT_EQ(static_cast<double>(all.channels[c].most), values[c][1]) << c;
        EXPECT_DOUBLE_EQ(all.channels[c].mean, values[c][2]) << c;
    }
    EXPECT_EQ(statistics(ramp(), {10, 10, 20, 20}).pixels, 0);
}

TEST(BoxStatistics, ValuesBeyondTheEdgesAreTheEdges) {
    EXPECT_THAT(value_at(ramp(), 3, 4), testing::ElementsAre(43.0f, -43.0f, 0.0f, 43.0f));
    EXPECT_THAT(value_at(ramp(), -9, 99), testing::ElementsAre(38.0f, -38.0f, 0.0f, 38.0f));
    EXPECT_THAT(value_at(Image(), 0, 0), testing::Each(0.0f));
}

}  // namespace
