// What strokes cost outside their areas, against pictures of the whole frame.
#include <gmock/gmock.h>

#include <cmath>
#include <cstdio>

#include "tools/PatchRig.h"

using namespace test;

namespace {

TEST(Elsewhere, StrokesTellWhatTheyCost) {
    constexpr const char* kBackingGone = "of the backing elsewhere is no longer clear";
    constexpr const char* kSubjectGone = "of the solid subject elsewhere is clear now";
    const struct {
        const char* tool;
        std::vector<Box> areas;
        const char* scale;
        bool garbage;
        const char* told;  // empty for nothing at all
    } cases[] = {{"addoverlay", {kShade}, "linear", false, ""},
                 {"addmatte", {kGrey}, "linear", false, ""},
                 {"removeoverlay", {{50, 2, 58, 10}}, "linear", false, kBackingGone},
                 {"removeoverlay", {{50, 2, 58, 10}}, "linear", true, kBackingGone},
                 {"removeoverlay", {{50, 2, 58, 10}}, "knee", false, "is gone; only the density"},
                 {"addoverlay", {kWarm}, "linear", false, kSubjectGone},
                 {"addoverlay", {kWarm, {4, 4, 8, 8}}, "linear", false, kSubjectGone}};
    const std::vector<Patch> skin{{kWarm, {0.45f, 0.35f, 0.3f}}, {{4, 24, 40, 36}, {0.44f, 0.35f, 0.29f}}};
    for (const auto& c : cases) {
        Rig rig;
        std::erase_if(rig.patches, [](const Patch& p) { return !std::isfinite(p.color[0] + p.color[1]); });
        rig.patches.insert(rig.patches.end(), skin.begin(), skin.end());
        const auto covered = [&](int x, int) { return c.garbage && x < 30; };
        FunctionSource gm(kFrame, kMaskAlpha,
                          [&](Channel, int x, int y) { return covered(x, y) ? 1.0f : 0.0f; });
        if (c.garbage) rig.node.set_input(3, &gm);
        rig.set("matte_scale", c.scale);
        rig.set("screen_shrink", "0,0");
        rig.set("screen_orphans", "off");
        const auto alphas = [&] {
            rig.node.invalidate();
            return render(rig.node, kFrame).planes[kAlpha];
        };
        const std::vector<float> before = alphas();
        rig.paint(c.tool, c.areas);
        const std::vector<float> after = alphas();
        SCOPED_TRACE(rig.told());
        if (*c.told == '\0') {
            EXPECT_FALSE(rig.report().changes.empty());
            EXPECT_THAT(rig.told(), testing::Not(testing::HasSubstr("elsewhere")));
            continue;
        }
        int all = 0;
        int lost = 0;
        for (std::size_t i = 0; i < before.size(); ++i) {
            const int x = static_cast<int>(i) % kFrame.width();
            const int y = static_cast<int>(i) / kFrame.width();
            const auto holds = [&](const Box& a) { return a.contains({x, y, x + 1, y + 1}); };
            const bool inside = std::ranges::any_of(c.areas, holds);
            if (inside || covered(x, y)) continue;
            const bool solid = c.told == kSubjectGone;
            if (solid ? before[i] < 0.9f : before[i] != 0.0f) continue;
            ++all;
            lost += (solid ? after[i] == 0.0f : after[i] > 1.0f / 255) ? 1 : 0;
        }
        ASSERT_GT(all, 100);
        const double share = 100.0 * lost / all;
        char percent[16] = "";
        const bool hidden = *c.scale == 'k';  // the picture shows nothing of it
        if (!hidden) std::snprintf(percent, sizeof percent, "\n%.*f%% ", share < 10.0 ? 1 : 0, share);
        EXPECT_EQ(lost == 0, hidden) << lost;
        EXPECT_THAT(rig.told(), testing::HasSubstr(percent + std::string(c.told)));
    }
}

}  // namespace
