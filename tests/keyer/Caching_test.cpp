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
    using Change = void (*)(KnobStorage&);
    const struct {
        const char* what;
        Change change;
        Names computed;
    } cases[] = {
        {"output mode", [](KnobStorage& k) { k.output_mode = 2; }, {}},
        {"overlay",
         [](KnobStorage& k) {
             k.overlay_color = {0.0f, 1.0f, 0.0f, 0.7f};
         },
         {}},
        {"spill", [](KnobStorage& k) { k.spill_strength = 70.0f; }, {"spillSuppression"}},
        // Normalising is as fast as reading back.
        {"shrink",
         [](KnobStorage& k) {
             k.screen_shrink = {3.0, 1.0};
         },
         {"normFg", "shrinkScreen", "horizontal", "vertical", "computePFG", "outputMatte",
          "spillSuppression"}},
        {"density",
         [](KnobStorage& k) { k.brights = 120.0f; },
         {"normFg", "computeMatte", "computePFG", "outputMatte", "spillSuppression"}},
    };
    for (const auto& c : cases) {
        Rig rig;
        Cached cached(std::size_t{1} << 26U);
        cached.render(rig);
        EXPECT_EQ(cached.computed().count("clearRegion"), 1U);
        c.change(rig.knobs());
        cached.render(rig);
        EXPECT_EQ(cached.computed(), c.computed) << c.what;
        cached.render(rig);
        EXPECT_EQ(cached.computed(), Names{}) << "again after " << c.what;
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
    using Change = void (*)(Rig&);
    const Change changes[] = {
        [](Rig& r) {
            r.knobs().screen_color = {0.2f, 0.3f, 0.7f};
        },
        [](Rig& r) {
            r.knobs().screen_color = {0.2f, 0.65f, 0.3f};
        },
        [](Rig& r) { r.knobs().screen_correct = !r.knobs().screen_correct; },
        [](Rig& r) { r.knobs().overlay_mode = (r.knobs().overlay_mode + 1) % 3; },
        [](Rig& r) { r.knobs().edge_kernel = r.knobs().edge_kernel > 0.0f ? 0.0f : 4.0f; },
        [](Rig& r) { r.knobs().shadow = !r.knobs().shadow; },
        [](Rig& r) {
            r.knobs().shadows_blur = {1.0, r.knobs().shadows_blur[1] > 0.0 ? 0.0 : 2.0};
        },
        [](Rig& r) { r.knobs().shadows_density += 3.0f; },
        [](Rig& r) { r.knobs().film = !r.knobs().film; },
        [](Rig& r) { r.knobs().film_strength += 20.0f; },
        [](Rig& r) { r.knobs().cleanup = !r.knobs().cleanup; },
        [](Rig& r) {
            r.knobs().cleanup_shrink = {r.knobs().cleanup_shrink[0] + 7.0, 0.0};
        },
        [](Rig& r) {
            r.knobs().cleanup_blur = {0.0, r.knobs().cleanup_blur[1] > 0 ? 0.0 : 2.0};
        },
        [](Rig& r) { r.knobs().screen_orphans = (r.knobs().screen_orphans + 1) % 4; },
        [](Rig& r) {
            r.knobs().screen_shrink = {r.knobs().screen_shrink[0] > 0 ? 0.0 : 1.0, 2.0};
        },
        [](Rig& r) { r.knobs().screen_tolerance[1] += 0.02f; },
        [](Rig& r) { r.knobs().brights += 10.0f; },
        [](Rig& r) { r.knobs().color_conformance = !r.knobs().color_conformance; },
        [](Rig& r) { r.knobs().color_hue += 11.0f; },
        [](Rig& r) { r.knobs().spill_suppression = !r.knobs().spill_suppression; },
        [](Rig& r) { r.knobs().spill_strength += 5.0f; },
        [](Rig& r) { r.knobs().spill_backgroundveiling[0] += 0.1f; },
        [](Rig& r) { r.knobs().output_mode = (r.knobs().output_mode + 1) % 3; },
        [](Rig& r) { r.node.set_input(1, r.node.connected(1) ? nullptr : &r.cp); },
        [](Rig& r) { r.node.set_input(4, r.node.connected(4) ? nullptr : &r.hm); },
    };
    // Room for everything, and for about five planes.
    for (const std::size_t budget : {std::size_t{1} << 26U, std::size_t{120000}}) {
        std::mt19937 random(23);
        Rig worked;
        Cached cached(budget);
        for (int step = 0; step < 150; ++step) {
            changes[random() % std::size(changes)](worked);
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
