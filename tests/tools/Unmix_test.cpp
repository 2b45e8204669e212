// The strokes that teach the unmixing matte.
#include <gmock/gmock.h>

#include <cmath>

#include "ZoImage/Script.h"
#include "panel/VeloxaSample_Knob.h"
#include "tools/PatchRig.h"

using namespace test;

namespace {

// A sample a stroke, which one operator of the unmixing matte follows.
TEST(Unmix, IsTaught) {
    const struct {
        const char* tool;
        const char* list;
        const char* stage;
        float alpha;
    } cases[] = {{"unmixbacking", "us_unmix_backing", "unmixBacking", 1.0f},
                 {"unmixsolid", "us_unmix_solid", "unmixSolids", 1.0f},
                 {"unmixseethrough", "us_unmix_see_through", "unmixSolve", 0.25f},
                 {"unmixown", "us_unmix_own", "unmixColour", 1.0f}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        Rig rig;
        rig.set("unmix_opacity", "0.25");
        const auto hash = [&] {
            rig.node.invalidate();
            rig.node.validate(true);
            return rig.node.child(c.stage)->hash();
        };
        const Hash before = hash();
        rig.stroke(c.tool, kGrey);
        EXPECT_NE(hash(), before);
        const auto& list = dynamic_cast<const VeloxaSample_Knob&>(rig.panel.get(c.list));
        ASSERT_EQ(list.count(), 1);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(list.samples()[0][i], kPatches[1].color[i], 1e-3f);
        EXPECT_EQ(list.samples()[0][3], c.alpha);
        EXPECT_THAT(rig.report().notes,
                    testing::ElementsAre(testing::StartsWith("added 0."), testing::HasSubstr("unmix")));
        rig.hold(c.list);
        rig.stroke(c.tool, kLeaf);
        EXPECT_EQ(list.count(), 1);
        EXPECT_THAT(rig.report().held, testing::ElementsAre(c.list));
        rig.hold(c.list, false);
        rig.set("unmix_method", "unmix");
        rig.stroke(c.tool, kLeaf);
        EXPECT_EQ(list.count(), 2);
        EXPECT_EQ(rig.report().notes.size(), 1U) << rig.told();
        rig.reset("Unmix");
        EXPECT_EQ(hash(), before);
    }
}

// A grey veil and dark cloth before a green backing that has a little grain; later posts come in that the
// backing shines on.
float veil_and_cloth(Channel c, int x, int y, bool posts, float light) {
    const auto i = static_cast<std::size_t>(c) - 1;
    constexpr Rgb kGreen{0.15f, 0.6f, 0.2f};
    constexpr Rgb kCloth{0.3f, 0.2f, 0.15f};
    constexpr Rgb kPost{0.5f, 0.52f, 0.3f};
    const float grain = 0.002f * static_cast<float>((x * 7 + y * 13 + static_cast<int>(i) * 5) % 5 - 2);
    float shown = kGreen[i];
    if (x >= 40 && x < 120) shown = 0.5f * shown + 0.25f;
    if (x >= 180 && x < 230 && y < 150) shown = kCloth[i];
    if (posts && x >= 250 && x % 50 < 40) shown = kPost[i];
    return light * shown + grain;
}

// What comes and goes elsewhere, and flickering light, leave the veil as it is.
TEST(Unmix, AShotKeepsAVeilFromBreathing) {
    const Box frame{0, 0, 400, 400};
    ToolRig rig;
    FunctionSource fg(frame, kMaskRgb, [](Channel, int, int) { return 0.0f; });
    rig.node.set_input(0, &fg);
    rig.set("screen_color", "0.15,0.6,0.2");
    rig.set("unmix_method", "unmix");
    const auto show = [&](bool posts, float light) {
        fg.set_pixel([=](Channel c, int x, int y) { return veil_and_cloth(c, x, y, posts, light); });
    };
    const auto veil = [&](bool posts, float light) {
        show(posts, light);
        rig.node.validate(true);
        const Picture alpha = render(*rig.node.child("unmixClean")->as_iop(), frame, 2);
        double sum = 0.0;
        for (int x = 60; x < 80; ++x) sum += static_cast<double>(alpha.at(kAlpha, x, 120)) / 20.0;
        return sum;
    };
    const auto breathes = [&] { return std::abs(veil(true, 1.02f) - veil(false, 0.98f)); };
    const double without = breathes();
    for (const bool posts : {false, true}) {
        show(posts, 1.0f);
        rig.use("unmix_analyse");
    }
    EXPECT_EQ(rig.report().failure, "") << rig.told();
    EXPECT_GT(without, 0.05);  // the posts' rims have more of the screen's light than the cloth's
    EXPECT_LT(breathes(), 0.1 * without);
    EXPECT_EQ(write_script(rig.panel).find("unmix_shot"), std::string::npos);
    rig.reset("Unmix");
    EXPECT_EQ(rig.text("unmix_shot"), "");
}

}  // namespace
