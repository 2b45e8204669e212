// The strokes that teach the unmixing matte.
#include <gmock/gmock.h>

#include "panel/VeloxaSample_Knob.h"
#include "tools/PatchRig.h"

using namespace Zo::Image;
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
        for (int n = 0; n < 100; ++n) rig.stroke(c.tool, kLeaf);
        EXPECT_EQ(list.count(), 100);
        EXPECT_NEAR(list.samples()[0][0], kPatches[2].color[0], 1e-3f);
        EXPECT_EQ(rig.report().notes.size(), 1U) << rig.told();
        rig.reset("Unmix");
        EXPECT_EQ(list.count(), 0);
        EXPECT_EQ(hash(), before);
    }
}

}  // namespace
