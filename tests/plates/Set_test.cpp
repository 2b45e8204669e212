#include "plates/Set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

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

std::vector<std::vector<Pixel>> truth(const Options& options, int frame = 0) {
    std::vector<std::vector<Pixel>> rows;
    Scene(options, frame).render(0, options.height, [&](int, const auto& row) { rows.push_back(row); });
    return rows;
}

void expect_sum_of_parts(const Options& options, int frame) {
    const Set set = render_set(options, frame, 2);
    const auto rows = truth(options, frame);
    double squares = 0, clean_squares = 0, sum = 0;
    const double n = options.width * options.height;
    for (int row = 0; row < options.height; ++row) {
        const int y = options.height - 1 - row;
        for (std::size_t x = 0; x < rows[0].size(); ++x) {
            const Pixel& p = rows[static_cast<std::size_t>(row)][x];
            const float rest = 1.0f - p.alpha;
            ASSERT_EQ(set[kAlphaTrue].line(kAlpha, y)[x], p.alpha);
            ASSERT_EQ(set[kRegions].line(kAlpha, y)[x], static_cast<float>(p.region));
            ASSERT_EQ(set[kColourTrue].line(kGreen, y)[x], p.colour.y);
            ASSERT_NEAR(set[kCompTrue].line(kGreen, y)[x], p.colour.y + rest * p.background.y * p.shadow,
                        1e-6);
            const float fg = set[kForeground].line(kGreen, y)[x] -
                             (p.colour.y + p.spill.y + rest * p.backing.y * p.shadow * p.light);
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

}  // namespace

TEST(Plate, SeedAndFrameChangeItAndThreadsDoNot) {
    Options options = small();
    options.vary.defocus = 20.0f;  // needs rows of the bands beside
    const Set first = render_set(options, 3, 1), many = render_set(options, 3, 5);
    const Set moved = render_set(options, 4, 2), other = render_set(small(Screen::kGreen, 2), 3, 2);
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
    for (Options options : {small(), small(Screen::kGreen, 3)}) {
        if (options.seed == 3) options.vary = varied(3);
        options.vary.grain = 1.0f;
        options.vary.flicker = options.seed == 3 ? 0.1f : 0.0f;
        expect_sum_of_parts(options, 2);
    }
}

TEST(Plate, HasSolidSoftAndEmptyPixelsOnBothScreens) {
    for (const Screen screen : {Screen::kGreen, Screen::kBlue}) {
        const auto of = [screen](Vec3 c) { return screen == Screen::kGreen ? c.y : c.z; };
        const auto most = [screen](Vec3 c) { return std::max(c.x, screen == Screen::kGreen ? c.z : c.y); };
        constexpr int kTotal = 160 * 90;
        int solid = 0, empty = 0, of_region[6] = {};
        double primary = 0, others = 0;
        for (const auto& row : truth(small(screen))) {
            for (const Pixel& p : row) {
                ASSERT_TRUE(p.alpha >= 0.0f && p.alpha <= 1.0f);
                ASSERT_TRUE(p.shadow > 0.5f && p.shadow <= 1.0f);
                ASSERT_FALSE(p.garbage > 0.0f && p.alpha > 0.0f);
                ASSERT_TRUE(p.alpha > 0.0f || p.colour.x + p.colour.y + p.colour.z + p.spill.y == 0.0f);
                // Solid parts of the figure are far from the screen's hue.
                ASSERT_TRUE(p.alpha < 1.0f || of(p.colour) < most(p.colour) + 0.12f);
                ASSERT_EQ(p.alpha == 0.0f, p.region == Region::kBacking);
                ASSERT_EQ(p.alpha == 1.0f, p.region == Region::kCore);
                ++of_region[static_cast<int>(p.region)];
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
        for (const int count : of_region) EXPECT_GT(count, kTotal / 500);
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

// Each leaves alone what it has nothing to do with: above all spill, grain, marks and light the true matte.
TEST(Plate, VariationsChangeTheirPicturesAlone) {
    const auto with = [](auto member, auto value) {
        Variation v;
        v.*member = value;
        return v;
    };
    const struct {
        Variation vary;
        const char* changed;
    } cases[] = {
        {with(&Variation::veil_tone, VeilTone::kDark), "fg fgcol_true comp_true "},
        {with(&Variation::veil_density, 0.3f), "fg alpha_true fgcol_true comp_true regions "},
        {with(&Variation::spill, 0.3f), "fg "},
        {with(&Variation::grain, 2.0f), "fg cp "},
        {with(&Variation::defocus, 20.0f), "fg alpha_true fgcol_true comp_true regions "},
        {with(&Variation::marks, 5), "fg cp "},
        {with(&Variation::hair, 3.0f), "fg alpha_true fgcol_true comp_true regions "},
        {with(&Variation::speed, 3.0f), "fg alpha_true fgcol_true comp_true regions "},
        {with(&Variation::details, true), "fg fgcol_true comp_true "},
        {with(&Variation::flicker, 0.1f), "fg fgcol_true comp_true "},
        {with(&Variation::moving, true), "fg cp gm alpha_true fgcol_true comp_true regions "},
    };
    const Set plain = render_set(small(), 3, 2);
    for (const auto& c : cases) {
        Options options = small();
        options.vary = c.vary;
        const Set set = render_set(options, 3, 2);
        std::string changed;
        for (std::size_t i = 0; i < set.size(); ++i)
            if (!same(set[i], plain[i])) changed += std::string(kPictureNames[i]) + " ";
        EXPECT_EQ(changed, c.changed);
    }
}
