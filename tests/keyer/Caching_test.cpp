// The node with kept rows: the same pixels as a fresh node's, and no more work than a change asks for.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

#include "ZoImage/RowCache.h"
#include "keyer/Rig.h"

using namespace Zo::Image;
using test::same_bits;

namespace {

const Box kFrame{-2, 3, 47, 64};

float plate(Channel c, int x, int y) {
    const float backing[] = {0.0f, 0.2f, 0.65f, 0.3f, 0.0f};
    const float skin[] = {0.0f, 0.8f, 0.5f, 0.4f, 0.0f};
    const float subject = (x - 20) * (x - 20) + (y - 30) * (y - 30) < 200 ? 1.0f : y % 7 == 0 ? 0.25f : 0.0f;
    const float noise = static_cast<float>((x * 37 + y * 101 + c * 17) % 23) / 400.0f;
    const auto i = static_cast<std::size_t>(c);
    return skin[i] * subject + backing[i] * (1.0f - subject) + noise;
}

struct Rig : test::Rig {
    Rig() : test::Rig(kFrame, plate) { node.set_input(2, &bg); }
};

struct Cached {
    explicit Cached(std::size_t budget) : cache(budget) { renderer.use_cache(&cache); }
    test::Picture render(Rig& rig) {
        rig.update();
        test::Picture picture{kFrame, {}, false};
        const auto width = static_cast<std::size_t>(kFrame.width());
        for (auto& plane : picture.planes) plane.resize(width * static_cast<std::size_t>(kFrame.height()));
        picture.complete = renderer.render(rig.node, kFrame, kMaskRgba, [&](int y, const Row& row) {
            for (const Channel c : kMaskRgba) {
                std::copy_n(row[c], width,
                            picture.planes[static_cast<std::size_t>(c)].data() +
                                static_cast<std::size_t>(y - kFrame.y) * width);
            }
        });
        return picture;
    }
    // The members that computed rows.
    std::set<std::string> computed() const {
        std::set<std::string> names;
        for (const OpStats& op : renderer.stats()) {
            if (op.rows > 0 && op.op->parent() != nullptr) names.insert(op.op->member_name());
        }
        return names;
    }

    RowCache cache;
    Renderer renderer{2};
};

TEST(Caching, AKnobComputesOnlyWhatFollowsIt) {
    using Names = std::set<std::string>;
    const struct {
        const char* change;
        Names computed;
    } cases[] = {
        {"output_mode unpremultiplied", {}},
        {"overlay_color 0,1,0,0.7", {}},
        {"spill_strength 70", {"spillSuppression"}},
        // Normalising is as fast as reading back.
        {"screen_shrink 3,1",
         {"normFg", "shrinkScreen", "horizontal", "vertical", "computePFG", "outputMatte",
          "spillSuppression"}},
        {"brights 120", {"normFg", "computeMatte", "computePFG", "outputMatte", "spillSuppression"}},
    };
    for (const auto& c : cases) {
        Rig rig;
        Cached cached(std::size_t{1} << 26U);
        cached.render(rig);
        EXPECT_EQ(cached.computed().count("clearRegion"), 1U);
        rig.set(c.change);
        cached.render(rig);
        EXPECT_EQ(cached.computed(), c.computed) << c.change;
        cached.render(rig);
        EXPECT_EQ(cached.computed(), Names{}) << "again after " << c.change;
    }
}

TEST(Caching, WholeFrameOperatorsRestBehindKeptRows) {
    Rig rig;
    rig.knobs().edge_kernel = 4.0f;
    Cached cached(std::size_t{1} << 26U);
    cached.render(rig);
    EXPECT_EQ(cached.computed().count("matteCorrectRaw"), 1U);
    rig.knobs().spill_cool = 71.0f;
    cached.render(rig);
    EXPECT_EQ(cached.computed(), std::set<std::string>{"spillSuppression"});
}

TEST(Caching, AnySeriesOfChangesEqualsAFreshNode) {
    const std::vector<std::string> settings = test::split(
        "screen_color 0.2,0.3,0.7; screen_color 0.7,0.2,0.3; screen_color 0.2,0.65,0.3; screen_correct 0; "
        "screen_correct 1; overlay_mode screen; overlay_mode subject; overlay_mode off; edge_kernel 4; "
        "edge_kernel 0; shadow 1; shadow 0; shadows_blur 1,2; shadows_blur 1,0; shadows_density 90; film 1; "
        "film 0; film_strength 40; cleanup 1; cleanup 0; cleanup_shrink 7,0; cleanup_shrink 14,0; "
        "cleanup_blur 0,2; cleanup_blur 0,0; screen_orphans off; screen_orphans fine; screen_shrink 0,2; "
        "screen_shrink 1,2; screen_tolerance 0.6,0.55,0.7; brights 110; color_conformance 1; "
        "color_conformance 0; color_hue 11; spill_suppression 0; spill_suppression 1; spill_strength 55; "
        "spill_backgroundveiling 0.5,0.4,0.4; output_mode premultiplied; output_mode composite; matte_scale "
        "linear; matte_scale knee; merge add; merge multiply; highlights keep; unmix_method unmix; "
        "unmix_method "
        "colour difference; unmix_method unmix; unmix_encoding sRGB; unmix_encoding as stored; unmix_folds "
        "0; "
        "unmix_solid 0.9; unmix_veil 0.2; unmix_denoise 0; unmix_spill 0");
    // Nothing kept, room for everything, and for about five planes.
    for (const std::size_t budget : {0U, 1U << 26U, 120000U}) {
        std::mt19937 random(23);
        Rig worked;
        Cached cached(budget);
        for (int step = 0; step < 150; ++step) {
            const auto change = random() % (settings.size() + 2);
            const int input = change == settings.size() ? 1 : 4;
            if (change < settings.size()) {
                worked.set(settings[change]);
            } else {
                Iop* const source = input == 1 ? &worked.cp : &worked.hm;
                worked.node.set_input(input, worked.node.connected(input) ? nullptr : source);
            }
            const test::Picture now = cached.render(worked);
            // Controls of sections that are off keep their last values, which no pixel depends on.
            Rig fresh;
            fresh.knobs() = worked.knobs();
            if (worked.node.connected(1)) fresh.node.set_input(1, &fresh.cp);
            if (worked.node.connected(4)) fresh.node.set_input(4, &fresh.hm);
            fresh.update();
            ASSERT_TRUE(same_bits(now, test::render(fresh.node, 1))) << "step " << step << ", " << budget;
        }
    }
}

}  // namespace
