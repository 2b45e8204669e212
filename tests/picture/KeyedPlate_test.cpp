// Whole keys of procedural plates against what is known of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "keyer/VeloxaKeyer.h"
#include "plates/Set.h"
#include "shot/node/ImageSource.h"
#include "shot/setup/Pick.h"
#include "support/TestImages.h"

using namespace Zo::Image;

namespace {

constexpr int kWidth = 480;
constexpr int kHeight = 270;

struct Key {
    plate::Set set;
    test::Picture picture;

    float truth(int x, int y) const {
        x = std::clamp(x, 0, kWidth - 1);
        y = std::clamp(y, 0, kHeight - 1);
        return set[plate::kAlphaTrue].line(kAlpha, y)[x];
    }
    bool garbage_near(int x, int y) const {
        const float* line = set[plate::kGarbage].line(kAlpha, y);
        return std::any_of(line + std::max(0, x - 4), line + std::min(kWidth, x + 5),
                           [](float v) { return v > 0.0f; });
    }
    // True when the true alpha is `value` in the 9 x 9 pixels around.
    bool surely(float value, int x, int y) const {
        for (int dy = -4; dy <= 4; ++dy) {
            for (int dx = -4; dx <= 4; ++dx) {
                if (truth(x + dx, y + dy) != value) return false;
            }
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

// Counts of pixels: of a kind, and those of them that are keyed wrongly.
struct Findings {
    int solid = 0, holes = 0, clear = 0, residue = 0, border = 0, dense = 0, lost = 0;
    double error = 0.0;
};

Findings findings(const Key& key) {
    Findings f;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            if (key.garbage_near(x, y)) continue;
            const float alpha = key.picture.at(kAlpha, x, y);
            EXPECT_TRUE(alpha >= 0.0f && alpha <= 1.0f);
            f.error += std::fabs(static_cast<double>(alpha - key.truth(x, y))) / (kWidth * kHeight);
            const bool solid = key.surely(1.0f, x, y), clear = key.surely(0.0f, x, y);
            const bool at_edge = x == 0 || y == 0 || x == kWidth - 1 || y == kHeight - 1;
            // What covers three quarters of a pixel or more is seen, hair included.
            const bool dense = key.truth(x, y) > 0.75f;
            f.solid += solid;
            f.holes += solid && alpha < 0.9f;
            f.clear += clear;
            f.residue += clear && alpha > 0.02f;
            f.border += clear && at_edge && alpha > 0.0f;
            f.dense += dense;
            f.lost += dense && alpha < 0.2f;
        }
    }
    return f;
}

TEST(KeyedPlate, SubjectIsSolidBackingIsGoneHairIsThere) {
    for (const plate::Screen screen : {plate::Screen::kGreen, plate::Screen::kBlue}) {
        for (const std::uint64_t seed : {1, 7, 23}) {
            for (const bool clean_plate : {false, true}) {
                SCOPED_TRACE(testing::Message() << "screen " << static_cast<int>(screen) << " seed " << seed
                                                << " clean plate " << clean_plate);
                const Findings f = findings(key_of(screen, seed, clean_plate));
                EXPECT_GT(f.solid, 10000);
                EXPECT_GT(f.clear, 50000);
                EXPECT_LT(f.holes, f.solid / 500);
                EXPECT_LT(f.residue, f.clear / 500);
                EXPECT_EQ(f.border, 0);
                EXPECT_LT(f.lost, f.dense / 100);
                EXPECT_LT(f.error, 0.015);
            }
        }
    }
}

}  // namespace
