// Whole keys of procedural plates against what is known of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "keyer/VeloxaKeyer.h"
#include "plates/Set.h"
#include "shot/node/ImageSource.h"
#include "shot/setup/ScreenChoice.h"
#include "support/TestImages.h"

using namespace Zo::Image;

namespace {

constexpr int kWidth = 480;
constexpr int kHeight = 270;

struct Key {
    plate::Set set;
    test::Picture picture;

    // Whether all values of a picture's alpha in the 9 x 9 pixels around are true to `good`.
    template <class Good>
    bool around(plate::Picture which, int x, int y, const Good& good) const {
        for (int v = std::max(y - 4, 0); v < std::min(y + 5, kHeight); ++v) {
            const float* const line = set[which].line(kAlpha, v);
            if (!std::all_of(line + std::max(x - 4, 0), line + std::min(x + 5, kWidth), good)) return false;
        }
        return true;
    }
};

Key key_of(plate::Screen screen, std::uint64_t seed, bool clean_plate) {
    Key key{plate::render_set({kWidth, kHeight, seed, screen}, 0, 2), {}};
    std::array<std::unique_ptr<veloxa::ImageSource>, 4> sources;
    VeloxaKeyer node(NodeContext{});
    const plate::Picture pictures[] = {plate::kForeground, plate::kCleanPlate, plate::kBackground,
                                       plate::kGarbage};
    for (std::size_t n = 0; n < sources.size(); ++n) {
        if (pictures[n] == plate::kCleanPlate && !clean_plate) continue;
        sources[n] = std::make_unique<veloxa::ImageSource>(NodeContext{});
        sources[n]->set(std::make_shared<veloxa::Image>(key.set[pictures[n]]), Hash{});
        node.set_input(static_cast<int>(n), sources[n].get());
    }
    // As one picks it: the mean of a box of backing beside the figure.
    const std::array<double, 3> color = veloxa::mean_color(key.set[plate::kCleanPlate], {312, 175, 362, 225});
    for (std::size_t c = 0; c < 3; ++c) node.knob_values().screen_color[c] = static_cast<float>(color[c]);
    node.invalidate();
    key.picture = test::render(node, 2);
    return key;
}

void expect_good(const Key& key) {
    // Counts of pixels: of a kind, and those of them that are keyed wrongly.
    int solid = 0, holes = 0, clear = 0, residue = 0, border = 0, dense = 0, lost = 0;
    double error = 0.0;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            if (!key.around(plate::kGarbage, x, y, [](float v) { return v == 0.0f; })) continue;
            const float alpha = key.picture.at(kAlpha, x, y);
            const float truth = key.set[plate::kAlphaTrue].line(kAlpha, y)[x];
            EXPECT_TRUE(alpha >= 0.0f && alpha <= 1.0f);
            error += std::fabs(static_cast<double>(alpha - truth)) / (kWidth * kHeight);
            const bool is_solid = key.around(plate::kAlphaTrue, x, y, [](float v) { return v == 1.0f; });
            const bool is_clear = key.around(plate::kAlphaTrue, x, y, [](float v) { return v == 0.0f; });
            const bool at_edge = x == 0 || y == 0 || x == kWidth - 1 || y == kHeight - 1;
            // What covers three quarters of a pixel or more is seen, hair included.
            const bool is_dense = truth > 0.75f;
            solid += is_solid;
            holes += is_solid && alpha < 0.9f;
            clear += is_clear;
            residue += is_clear && alpha > 0.02f;
            border += is_clear && at_edge && alpha > 0.0f;
            dense += is_dense;
            lost += is_dense && alpha < 0.2f;
        }
    }
    EXPECT_GT(solid, 10000);
    EXPECT_GT(clear, 50000);
    EXPECT_LT(holes, solid / 500);
    EXPECT_LT(residue, clear / 500);
    EXPECT_EQ(border, 0);
    EXPECT_LT(lost, dense / 100);
    EXPECT_LT(error, 0.015);
}

TEST(KeyedPlate, SubjectIsSolidBackingIsGoneHairIsThere) {
    for (const plate::Screen screen : {plate::Screen::kGreen, plate::Screen::kBlue}) {
        for (const std::uint64_t seed : {1, 7, 23}) {
            for (const bool clean_plate : {false, true}) {
                SCOPED_TRACE(testing::Message() << "screen " << static_cast<int>(screen) << " seed " << seed
                                                << " clean plate " << clean_plate);
                expect_good(key_of(screen, seed, clean_plate));
            }
        }
    }
}

}  // namespace
