// The estimate of the backing: shares worked out by hand, and plates with and without a backing.
#include "tools/ScreenEstimate.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <random>

#include "plates/Set.h"
#include "shot/node/ImageSource.h"
#include "support/Loops.h"
#include "support/TestImages.h"

using namespace test;

namespace {

using Color = std::array<double, 3>;
constexpr Color kGreenish{0.125, 0.625, 0.25};
constexpr Color kBluish{0.125, 0.25, 0.5};
constexpr Color kGrey{0.5, 0.5, 0.5};

const Box kFrame{0, 0, 64, 48};

using Paint = std::function<Color(int, int)>;

ScreenEstimate look(Iop& image, std::optional<Channel> primary = {}) {
    Renderer renderer(2);
    return estimate_screen(image, primary, renderer);
}

// The picture has its pixels in a box of its own, whatever the frame shows.
ScreenEstimate look(const Paint& paint, std::optional<Channel> primary = {}, const Box& box = kFrame) {
    const auto pixel = [&](Channel c, int x, int y) { return static_cast<float>(paint(x, y)[c - kRed]); };
    FunctionSource image(box, kMaskRgb, pixel, kFrame);
    return look(image, primary);
}

TEST(ScreenEstimate, SharesOfHalves) {
    const ScreenEstimate one = look([](int x, int) { return x < 32 ? kGreenish : kGrey; });
    EXPECT_EQ(one.primary, kGreen);
    EXPECT_EQ(one.color, kGreenish);
    EXPECT_NEAR(one.share, 0.5, 1e-12);  // the weights are the same left and right
    EXPECT_EQ(one.rival, 0.0);
    EXPECT_TRUE(one.found());

    const Paint both = [](int x, int) { return x < 32 ? kGreenish : kBluish; };
    EXPECT_NEAR(look(both).confidence(), 0.0, 1e-12);
    EXPECT_FALSE(look(both).found());
    const ScreenEstimate named = look(both, kBlue);
    EXPECT_TRUE(named.found());
    EXPECT_EQ(named.color, kBluish);
    EXPECT_FALSE(look(both, kRed).found());
}

// Blue fills the middle, green a border on three sides; the weights by the rule, pixel by pixel.
TEST(ScreenEstimate, BordersCountMost) {
    const auto inside = [](int x, int y) { return x >= 8 && x < 56 && y < 42; };
    double blue = 0.0, all = 0.0;
    each(64, 48, [&](int x, int y) {
        const double way = std::min({(x + 0.5) / 32.0, (63.5 - x) / 32.0, (47.5 - y) / 24.0});
        const double weight = way < 0.4 ? 1.0 + 3.0 * (1.0 - way / 0.4) : 1.0;
        all += weight;
        blue += inside(x, y) ? weight : 0.0;
    });
    const ScreenEstimate found = look([&](int x, int y) { return inside(x, y) ? kBluish : kGreenish; });
    EXPECT_EQ(found.primary, kGreen);  // on a third of the pixels
    EXPECT_NEAR(found.share, 1.0 - blue / all, 1e-9);
    EXPECT_NEAR(found.rival, blue / all, 1e-9);
}

TEST(ScreenEstimate, FallingLightAndWildPixelsDoNotMoveIt) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    const Paint wild = [&](int x, int y) -> Color {
        if (x < 0 || y < 0 || x >= 64 || y >= 48) return {9.0, 0.0, 0.0};  // not seen
        if ((x * 7 + y * 13) % 10 == 0) return {kInf, -kInf, std::numeric_limits<double>::quiet_NaN()};
        if ((x * 7 + y * 13) % 10 == 1) return {50.0, 60.0, 55.0};
        const double light = 0.25 + 0.75 * (x + 0.5) / 64.0;
        return {kGreenish[0] * light, kGreenish[1] * light, kGreenish[2] * light};
    };
    const ScreenEstimate found = look(wild, {}, {-6, -6, 70, 54});
    EXPECT_EQ(found.primary, kGreen);
    EXPECT_TRUE(found.found());
    EXPECT_NEAR(found.color[0] / found.color[1], 0.2, 0.01);
    EXPECT_NEAR(found.color[1], 0.39, 0.03);  // in the middle of the light
}

TEST(ScreenEstimate, StopsWithoutABacking) {
    const auto noise = [](int x, int y) -> Color {
        std::mt19937 random(static_cast<unsigned>(y * 64 + x));  // rows are made on several threads
        const auto draw = [&] { return static_cast<double>(random() % 1024) / 1024.0; };
        return {draw(), draw(), draw()};
    };
    const auto even = [](double red, double green, double blue) -> Paint {
        return [=](int, int) { return Color{red, green, blue}; };
    };
    const auto ramp = [](int x, int) -> Color { return {x / 64.0, x / 64.0, x / 64.0}; };
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const Paint plain[] = {noise, ramp, even(0.0, 0.0, 0.0), even(0.5, 0.57, 0.5), even(kNan, kNan, kNan)};
    for (const Paint& paint : plain) EXPECT_FALSE(look(paint).found()) << &paint - plain;
    EXPECT_FALSE(look([](int, int) { return kGreenish; }, {}, {70, 0, 80, 48}).found());
}

TEST(ScreenEstimate, FindsTheBackingOfPlates) {
    for (const std::uint64_t seed : {1, 2, 3, 7, 11, 23}) {
        for (const plate::Screen screen : {plate::Screen::kGreen, plate::Screen::kBlue}) {
            const plate::Set set = plate::render_set({160, 90, seed, screen}, 0, 2);
            const auto shown = [&](plate::Picture picture) {
                veloxa::ImageSource source(NodeContext{});
                source.set(std::make_shared<veloxa::Image>(set[picture]), Hash{});
                return look(source);
            };
            const ScreenEstimate found = shown(plate::kForeground);
            EXPECT_EQ(found.primary, screen == plate::Screen::kGreen ? kGreen : kBlue) << seed;
            EXPECT_GT(found.confidence(), 0.6) << seed;
            // Near the backing as it is beside the figure, where the light is not at its brightest.
            for (const Channel c : kMaskRgb) {
                const auto i = static_cast<std::size_t>(c - kRed);
                const double beside = static_cast<double>(set[plate::kCleanPlate].line(c, 66)[112]);
                EXPECT_NEAR(found.color[i], beside, 0.12 * beside + 0.02) << seed << ' ' << c;
            }
            EXPECT_FALSE(shown(plate::kBackground).found()) << seed;
        }
    }
}

}  // namespace
