// The automatic set-up on procedural plates, against the defaults and what is known to be true.
#include "AutoSetup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "NodeInputs.h"
#include "PlateSet.h"
#include "ZoImage/Iop.h"
#include "support/TestImages.h"

using namespace veloxa;
using namespace Zo::Image;

namespace {

constexpr int kWidth = 480;
constexpr int kHeight = 270;
// Left of the figure nothing but backing, but for the stand that the garbage matte is for.
constexpr Box kLeft{40, 120, 110, 260};

// A node that keys a plate whose foreground was changed by `change`.
struct Rig {
    explicit Rig(plate::Screen screen, std::uint64_t seed, const std::function<void(Image&)>& change = {})
        : set(plate::render_set({kWidth, kHeight, seed, screen}, 0, 2)) {
        auto fg = std::make_shared<Image>(set[plate::kForeground]);
        if (change) change(*fg);
        FrameLoader::Names names;
        names[kFg] = FramePattern("fg");
        inputs.connect(node.image(), names);
        FrameInputs images;
        images[kFg] = {fg, Hash{}};
        inputs.set(images);
        node.panel().set_from_text("screen_color",
                                   screen == plate::Screen::kBlue ? "0.09,0.22,0.6" : "0.14,0.6,0.24");
    }
    // The mean difference of the alpha from the true one.
    double error() {
        const test::Picture picture = test::render(node.image(), 2);
        double sum = 0.0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const float truth = set[plate::kAlphaTrue].line(kAlpha, y)[x];
                sum += std::fabs(static_cast<double>(picture.at(kAlpha, x, y) - truth));
            }
        }
        return sum / (kWidth * kHeight);
    }
    std::vector<ToolReport> set_up() { return AutoSetup(node, 2, nullptr).run(); }

    plate::Set set;
    NodeInputs inputs;
    Node node;
};

TEST(AutoSetup, ComesNearerToTheTruthThanTheDefaults) {
    for (const plate::Screen screen : {plate::Screen::kGreen, plate::Screen::kBlue}) {
        for (const std::uint64_t seed : {1, 5, 9}) {
            Rig rig(screen, seed);
            const double before = rig.error();
            rig.set_up();
            EXPECT_LT(rig.error(), before)
                << "seed " << seed << (screen == plate::Screen::kBlue ? " blue" : "");
        }
    }
}

// Backing so pale that the region leaves it out, as where light falls on cloth.
TEST(AutoSetup, CoversPaleBacking) {
    Rig rig(plate::Screen::kGreen, 1, [](Image& fg) {
        for (int y = kLeft.y; y < kLeft.t; ++y) {
            for (const Channel c : {kRed, kBlue}) {
                for (int x = kLeft.x; x < kLeft.r; ++x) fg.line(c, y)[x] += 0.07f;
            }
        }
    });
    const auto opaque = [&] {
        const test::Picture picture = test::render(rig.node.image(), 2);
        int count = 0;
        for (int y = kLeft.y + 8; y < kLeft.t - 8; ++y) {
            for (int x = kLeft.x + 8; x < kLeft.r - 8; ++x) count += picture.at(kAlpha, x, y) > 0.0f ? 1 : 0;
        }
        return count;
    };
    rig.node.panel().set_from_text("matte_scale", "linear");
    ASSERT_GT(opaque(), 2000) << "the patch was meant to be left out by the default region";
    rig.set_up();
    EXPECT_EQ(opaque(), 0);
}

TEST(AutoSetup, SurvivesPlatesWithNothingToGoBy) {
    const std::function<void(Image&)> changes[] = {
        [](Image& fg) {  // backing alone
            for (const Channel c : kMaskRgb)
                std::fill_n(fg.line(c, 0), kWidth * kHeight, c == kGreen ? 0.6f : 0.15f);
        },
        [](Image& fg) {  // no backing at all
            for (const Channel c : kMaskRgb) std::fill_n(fg.line(c, 0), kWidth * kHeight, 0.4f);
        },
        [](Image& fg) {
            for (const Channel c : kMaskRgb)
                std::fill_n(fg.line(c, 100), 40 * kWidth, std::numeric_limits<float>::quiet_NaN());
        },
    };
    for (const auto& change : changes) {
        Rig rig(plate::Screen::kGreen, 1, change);
        rig.set_up();
        EXPECT_GE(rig.node.panel().get("brights").get_value(), 50.0);
        EXPECT_EQ(rig.node.panel().get("matte_scale").get_value(), 1.0);
    }
}

}  // namespace
