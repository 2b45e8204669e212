#include "plates/Set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <span>

using namespace plate;
using Zo::Image::Channel;
using Zo::Image::kAlpha;
using Zo::Image::kGreen;

namespace {

Options small(Screen screen = Screen::kGreen, std::uint64_t seed = 1) {
    return {160, 90, seed, screen};
}

std::span<const float> samples(const veloxa::Image& image, Channel c) {
    return {image.plane(c).get(), image.width() * image.height()};
}

bool same(const veloxa::Image& a, const veloxa::Image& b) {
    for (const Channel c : a.info.channels) {
        if (!std::ranges::equal(samples(a, c), samples(b, c))) return false;
    }
    return true;
}

std::vector<std::vector<Pixel>> truth(const Options& options) {
    std::vector<std::vector<Pixel>> rows;
    Scene(options, 0).render(0, options.height, [&](int, const auto& row) { rows.push_back(row); });
    return rows;
}

}  // namespace

TEST(Plate, SeedAndFrameChangeItAndThreadsDoNot) {
    const Set first = render_set(small(), 3, 1), many = render_set(small(), 3, 5);
    const Set moved = render_set(small(), 4, 2), other = render_set(small(Screen::kGreen, 2), 3, 2);
    for (std::size_t i = 0; i < first.size(); ++i) {
        const bool set = i == kCleanPlate || i == kBackground || i == kGarbage;
        EXPECT_TRUE(same(first[i], many[i])) << kPictureNames[i];
        EXPECT_EQ(same(first[i], moved[i]), set) << kPictureNames[i];
        EXPECT_FALSE(same(first[i], other[i])) << kPictureNames[i];
    }
}

// Foreground and clean plate are their parts plus grain of a deviation near 0.006 and a third of it; the true
// composite is its parts exactly.
TEST(Plate, IsTheSumOfItsParts) {
    const Options options = small();
    const Set set = render_set(options, 0, 2);
    const auto rows = truth(options);
    double squares = 0, clean_squares = 0, sum = 0;
    const double n = options.width * options.height;
    for (int row = 0; row < options.height; ++row) {
        const int y = options.height - 1 - row;
        for (std::size_t x = 0; x < rows[0].size(); ++x) {
            const Pixel& p = rows[static_cast<std::size_t>(row)][x];
            const float rest = 1.0f - p.alpha;
            ASSERT_EQ(set[kAlphaTrue].line(kAlpha, y)[x], p.alpha);
            ASSERT_EQ(set[kColourTrue].line(kGreen, y)[x], p.colour.y);
            ASSERT_NEAR(set[kCompTrue].line(kGreen, y)[x], p.colour.y + rest * p.background.y * p.shadow,
                        1e-6);
            const float fg = set[kForeground].line(kGreen, y)[x] -
                             (p.colour.y + p.spill.y + rest * p.backing.y * p.shadow);
            const float cp = set[kCleanPlate].line(kGreen, y)[x] - p.backing.y;
            ASSERT_LT(std::abs(fg), 0.04f);
            squares += fg * fg;
            clean_squares += cp * cp;
            sum += fg;
        }
    }
    EXPECT_NEAR(std::sqrt(squares / n), 0.006, 0.0015);
    EXPECT_NEAR(std::sqrt(clean_squares / n), 0.002, 0.0006);
    EXPECT_NEAR(sum / n, 0.0, 0.0003);
}

TEST(Plate, HasSolidSoftAndEmptyPixelsOnBothScreens) {
    for (const Screen screen : {Screen::kGreen, Screen::kBlue}) {
        const auto of = [screen](Vec3 c) { return screen == Screen::kGreen ? c.y : c.z; };
        const auto most = [screen](Vec3 c) { return std::max(c.x, screen == Screen::kGreen ? c.z : c.y); };
        constexpr int kTotal = 160 * 90;
        int solid = 0, empty = 0;
        double primary = 0, others = 0;
        for (const auto& row : truth(small(screen))) {
            for (const Pixel& p : row) {
                ASSERT_TRUE(p.alpha >= 0.0f && p.alpha <= 1.0f);
                ASSERT_TRUE(p.shadow > 0.5f && p.shadow <= 1.0f);
                ASSERT_FALSE(p.garbage > 0.0f && p.alpha > 0.0f);
                ASSERT_TRUE(p.alpha > 0.0f || p.colour.x + p.colour.y + p.colour.z + p.spill.y == 0.0f);
                // Solid parts of the figure are far from the screen's hue.
                ASSERT_TRUE(p.alpha < 1.0f || of(p.colour) < most(p.colour) + 0.12f);
                solid += p.alpha == 1.0f;
                empty += p.alpha == 0.0f;
                primary += of(p.backing);
                others += most(p.backing);
            }
        }
        EXPECT_GT(solid, kTotal / 6);
        EXPECT_GT(empty, kTotal / 3);
        EXPECT_GT(kTotal - solid - empty, kTotal / 50);
        EXPECT_GT(primary, 2.0 * others);
    }
}

TEST(Plate, AnySizeIsFinite) {
    for (const auto& [width, height] : {std::pair{1, 1}, {37, 21}, {3, 200}, {300, 2}}) {
        for (const veloxa::Image& image : render_set({width, height, 7, Screen::kBlue}, 0, 2)) {
            for (const Channel c : image.info.channels) {
                ASSERT_TRUE(std::ranges::all_of(samples(image, c), [](float v) { return std::isfinite(v); }));
            }
        }
    }
}
