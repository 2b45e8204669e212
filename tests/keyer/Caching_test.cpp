// The node with kept rows: the same pixels as a fresh node's, and no more work than a change asks for.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

#include "ZoImage/RowCache.h"
#include "keyer/Rig.h"

using namespace test;

namespace {

using Names = std::set<std::string>;

const Box kFrame{-2, 3, 47, 64};

struct Cached {
    explicit Cached(std::size_t budget) : cache(budget) { renderer.use_cache(&cache); }
    Picture render(Rig& rig) {
        rig.update();
        return test::render(renderer, rig.node, kFrame);
    }
    // The members that computed rows.
    Names computed() const {
        Names names;
        for (const OpStats& op : renderer.stats()) {
            if (op.rows > 0 && op.op->parent() != nullptr) names.insert(op.op->member_name());
        }
        return names;
    }

    RowCache cache;
    Renderer renderer{2};
};

// What a change computes again after a picture for which `member` computed rows.
void expect_computed(const char* before, const char* member, const char* change, const Names& computed) {
    SCOPED_TRACE(change);
    Rig rig(kFrame);
    rig.node.set_input(2, &rig.bg);
    rig.set(before);
    Cached cached(std::size_t{1} << 26U);
    cached.render(rig);
    EXPECT_EQ(cached.computed().count(member), 1U);
    rig.set(change);
    cached.render(rig);
    EXPECT_EQ(cached.computed(), computed);
    cached.render(rig);
    EXPECT_EQ(cached.computed(), Names{}) << "again";
}

TEST(Caching, AKnobComputesOnlyWhatFollowsIt) {
    expect_computed("", "clearRegion", "output_mode unpremultiplied", {});
    expect_computed("", "clearRegion", "overlay_color 0,1,0,0.7", {});
    expect_computed("", "clearRegion", "spill_strength 70", {"spillSuppression"});
    // Normalising is as fast as reading back.
    expect_computed("", "clearRegion", "screen_shrink 3,1",
                    {"normFg", "shrinkScreen", "horizontal", "vertical", "computePFG", "outputMatte",
                     "spillSuppression"});
    expect_computed("", "clearRegion", "brights 120",
                    {"normFg", "computeMatte", "computePFG", "outputMatte", "spillSuppression"});
    // Operators that need whole frames rest behind kept rows.
    expect_computed("edge_kernel 4", "matteCorrectRaw", "spill_cool 71", {"spillSuppression"});
}

TEST(Caching, AnySeriesOfChangesEqualsAFreshNode) {
    const std::vector<std::string> settings = split(
        "screen_color 0.2,0.3,0.7; screen_color 0.7,0.2,0.3; screen_color 0.2,0.65,0.3; screen_correct 0; "
        "screen_correct 1; overlay_mode screen; overlay_mode subject; overlay_mode off; edge_kernel 4; "
        "edge_kernel 0; shadow 1; shadow 0; shadows_blur 1,2; shadows_blur 1,0; shadows_density 90; film 1; "
        "film 0; film_strength 40; cleanup 1; cleanup 0; cleanup_shrink 7,0; cleanup_shrink 14,0; "
        "cleanup_blur 0,2; cleanup_blur 0,0; screen_orphans off; screen_orphans fine; screen_shrink 0,2; "
        "screen_shrink 1,2; screen_tolerance 0.6,0.55,0.7; brights 110; color_conformance 1; "
        "color_conformance 0; color_hue 11; spill_suppression 0; spill_suppression 1; spill_strength 55; "
        "spill_backgroundveiling 0.5,0.4,0.4; output_mode premultiplied; output_mode composite; "
        "matte_scale linear; matte_scale knee; merge add; merge multiply; highlights keep; "
        "unmix_method unmix; unmix_method colour difference; unmix_method unmix; unmix_encoding sRGB; "
        "unmix_encoding as stored; unmix_folds 0; unmix_solid 0.9; unmix_veil 0.2; unmix_denoise 0; "
        "unmix_spill 0");
    // Nothing kept, room for everything, and for about five planes.
    for (const std::size_t budget : {0U, 1U << 26U, 120000U}) {
        std::mt19937 random(23);
        Rig worked(kFrame);
        worked.node.set_input(2, &worked.bg);
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
            const Picture now = cached.render(worked);
            // Controls of sections that are off keep their last values, which no pixel depends on.
            Rig fresh(kFrame);
            fresh.connect_all();
            fresh.node.set_input(3, nullptr);
            fresh.knobs() = worked.knobs();
            for (const int n : {1, 4}) {
                if (!worked.node.connected(n)) fresh.node.set_input(n, nullptr);
            }
            fresh.update();
            ASSERT_TRUE(same_bits(now, render(fresh.node, 1))) << "step " << step << ", " << budget;
        }
    }
}

}  // namespace
