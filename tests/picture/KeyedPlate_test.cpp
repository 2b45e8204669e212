// Whole keys of procedural plates against what is known of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "keyer/VeloxaKeyer.h"
#include "plates/Set.h"
#include "shot/node/ImageSource.h"
#include "support/TestImages.h"

using namespace Zo::Image;

namespace {

constexpr int kWidth = 480;
constexpr int kHeight = 270;

struct Key {
    plate::Set set;
    test::Picture picture;
    Box box;

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
    Key key{plate::render_set({kWidth, kHeight, seed, screen}, 0, 2), {}, {}};
    VeloxaKeyer node(NodeContext{});
    std::vector<std::unique_ptr<veloxa::ImageSource>> sources;
    const auto connect = [&](int input, plate::Picture picture) {
        sources.push_back(std::make_unique<veloxa::ImageSource>(NodeContext{}));
        sources.back()->set(std::make_shared<veloxa::Image>(key.set[picture]), Hash{});
        node.set_input(input, sources.back().get());
    };
    connect(0, plate::kForeground);
    if (clean_plate) connect(1, plate::kCleanPlate);
    connect(2, plate::kBackground);
    connect(3, plate::kGarbage);
    // As one picks it: the mean of a box of backing beside the figure.
    for (const Channel c : kMaskRgb) {
        double sum = 0;
        for (int y = 175; y < 225; ++y) {
            for (int x = 312; x < 362; ++x)
                sum += static_cast<double>(key.set[plate::kCleanPlate].line(c, y)[x]);
        }
        node.knob_values().screen_color[static_cast<std::size_t>(c - kRed)] =
            static_cast<float>(sum / 2500.0);
    }
    node.invalidate();
    key.picture = test::render(node, 2);
    return key;
}

TEST(KeyedPlate, SubjectIsSolidBackingIsGoneHairIsThere) {
    for (const plate::Screen screen : {plate::Screen::kGreen, plate::Screen::kBlue}) {
        for (const std::uint64_t seed : {1, 7, 23}) {
            for (const bool clean_plate : {false, true}) {
                const std::string name = std::string(screen == plate::Screen::kGreen ? "green" : "blue") +
                                         " seed " + std::to_string(seed) +
                                         (clean_plate ? " with clean plate" : "");
                const Key key = key_of(screen, seed, clean_plate);
                int solid = 0, holes = 0, clear = 0, residue = 0, border = 0, dense = 0, lost = 0;
                double error = 0;
                for (int y = 0; y < kHeight; ++y) {
                    for (int x = 0; x < kWidth; ++x) {
                        if (key.garbage_near(x, y)) continue;
                        const float alpha = key.picture.at(kAlpha, x, y);
                        ASSERT_TRUE(alpha >= 0.0f && alpha <= 1.0f) << name;
                        error += std::fabs(static_cast<double>(alpha - key.truth(x, y)));
                        if (key.surely(1.0f, x, y)) {
                            ++solid;
                            holes += alpha < 0.9f ? 1 : 0;
                        }
                        if (key.surely(0.0f, x, y)) {
                            ++clear;
                            residue += alpha > 0.02f ? 1 : 0;
                            const bool at_edge = x == 0 || y == 0 || x == kWidth - 1 || y == kHeight - 1;
                            border += at_edge && alpha > 0.0f ? 1 : 0;
                        }
                        // What covers three quarters of a pixel or more is seen, hair included.
                        if (key.truth(x, y) > 0.75f) {
                            ++dense;
                            lost += alpha < 0.2f ? 1 : 0;
                        }
                    }
                }
                RecordProperty(name, std::to_string(error / (kWidth * kHeight)));
                EXPECT_GT(solid, 10000) << name;
                EXPECT_GT(clear, 50000) << name;
                EXPECT_LT(holes, solid / 500) << name;
                EXPECT_LT(residue, clear / 500) << name;
                EXPECT_EQ(border, 0) << name;
                EXPECT_LT(lost, dense / 100) << name;
                EXPECT_LT(error / (kWidth * kHeight), 0.015) << name;
            }
        }
    }
}

}  // namespace
