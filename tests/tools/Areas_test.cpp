// Strokes of several areas, and what the node remembers of strokes.
#include <gmock/gmock.h>

#include "tools/PatchRig.h"
#include "tools/StrokeAreas.h"

using namespace test;

namespace {

TEST(StrokeAreas, HoldEachPixelOnce) {
    const std::vector<Box> cases[] = {
        {},
        {{5, 5, 5, 9}},
        {{1, 2, 6, 5}},
        {{1, 2, 6, 5}, {6, 2, 9, 5}, {1, 5, 9, 7}},                // one box
        {{0, 0, 9, 9}, {2, 3, 4, 5}, {12, 3, 14, 5}},              // one within, one apart
        {{4, 0, 6, 10}, {0, 4, 10, 6}, {20, 15, 25, 20}},          // a cross
        {{1, 1, 4, 4}, {2, 2, 5, 5}, {3, 3, 6, 6}, {9, 2, 3, 4}},  // a path; one is empty
        {{0, 0, 3, 2}, {8, 0, 9, 2}, {0, 6, 3, 8}, {8, 6, 9, 8}},
    };
    for (const std::vector<Box>& boxes : cases) {
        const StrokeAreas areas(boxes);
        const auto holding = [](const std::vector<Box>& list, const Box& pixel) {
            return std::ranges::count_if(list, [&](const Box& b) { return b.contains(pixel); });
        };
        std::int64_t pixels = 0;
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 30; ++x) {
                const Box pixel{x, y, x + 1, y + 1};
                const bool wanted = holding(boxes, pixel) > 0;
                EXPECT_EQ(holding(areas.parts(), pixel), wanted ? 1 : 0) << x << ',' << y;
                EXPECT_EQ(areas.contains(x, y), wanted) << x << ',' << y;
                pixels += wanted ? 1 : 0;
            }
        }
        EXPECT_EQ(areas.pixels(), pixels);
    }
}

// The box around the two holds skin, which nobody spoke of.
TEST(Areas, AreAskedForAndNothingBetween) {
    Rig rig;
    const auto inner = [](const Box& b) { return Box{b.x + 3, b.y + 3, b.r - 3, b.t - 3}; };
    rig.paint("addoverlay", {inner(kShade), inner(kNoise)});
    EXPECT_EQ(rig.span("clearRegion", kAlpha, kShade), kFull) << rig.told();
    EXPECT_EQ(rig.span("clearRegion", kAlpha, kNoise), kFull) << rig.told();
    EXPECT_EQ(rig.span("clearRegion", kAlpha, kWarm), kNone) << rig.told();
    EXPECT_EQ(rig.report().box, (Box{7, 7, 37, 53}));
    const std::vector<std::string> mean = words(rig.text("us_add_overlay"));
    ASSERT_EQ(mean.size(), 4U);
    const double expected[] = {0.15, 0.43, 0.18};
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(std::stod(mean[i]), expected[i], 0.001) << i;
}

// As with one area the rims would stay in the picture, since what is around them is no screen area.
TEST(Areas, AreTransparentToTheirMargins) {
    Rig rig;
    const std::vector<Box> parts{{28, 26, 36, 30}, {68, 26, 72, 34}};
    const Rgb around[] = {{0.16f, 0.56f, 0.22f}, {0.28f, 0.5f, 0.3f}};
    for (std::size_t n = 0; n < 2; ++n) {
        const Box& p = parts[n];
        rig.patches.push_back({{p.x - 4, p.y - 4, p.r + 4, p.t + 4}, around[n]});
        rig.patches.push_back({p, {0.26f, 0.52f, 0.28f}});
    }
    rig.node.validate(true);
    EXPECT_THAT(render(rig.node, parts[1]).planes[kAlpha], testing::Each(testing::Gt(0.0f)));
    rig.paint("addoverlay", parts);
    for (const Box& p : parts) {
        EXPECT_THAT(render(rig.node, p).planes[kAlpha], testing::Each(0.0f)) << rig.told();
    }
}

// Areas that overlap say what one box does that is their sum, with every tool; the fields of the report too.
TEST(Areas, OverlappingOnesCountOnce) {
    const Rig names;
    for (const auto& knob : names.panel.knobs()) {
        if (knob->kind() != Knob::Kind::kToolButton) continue;
        const std::string tool = knob->name().substr(std::string("toolbar_").size());
        Rig whole, parts;
        whole.set("screen_shrink", "6,6");
        parts.set("screen_shrink", "6,6");
        whole.paint(tool, {{27, 7, 37, 17}});
        parts.paint(tool, {{27, 7, 32, 14}, {30, 7, 37, 17}, {27, 13, 34, 17}});
        EXPECT_EQ(parts.values(true), whole.values(true)) << tool;
        EXPECT_EQ(parts.told(), whole.told());
        EXPECT_EQ(parts.report().box, whole.report().box);
    }
}

// A stroke that is tried and taken back leaves no trace; so does one in another node that gets the memory.
TEST(ToolMemory, TakesStrokesBack) {
    const struct {
        const char* tool;
        Box first, tried, then;
    } cases[] = {{"addoverlay", kNoise, kWarm, kShade},      {"addmatte", kGrey, kLeaf, kCloth},
                 {"removenoise", kNoise, kShade, kNoise},    {"restorespill", kLeaf, kGrey, kWarm},
                 {"matchcolor", kWarm, kLeaf, kGrey},        {"unmixsolid", kWarm, kLeaf, kGrey},
                 {"removeoverlay", kShade, kBacking, kNoise}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        const auto all = [](Rig& rig) {
            rig.node.validate(true);
            return rig.values(true) + rig.told() + rig.node.diagnostic("controls");
        };
        Rig fresh, rig, other;
        for (Rig* const r : {&fresh, &rig}) r->stroke(c.tool, c.first);
        const std::string once = all(rig);
        const KnobValues values(rig.panel);
        const auto memory = rig.node.tool_memory();
        rig.stroke(c.tool, c.tried);
        EXPECT_NE(all(rig), once);
        values.restore();
        rig.node.recall(memory);
        rig.reports = rig.node.tool_reports();
        EXPECT_EQ(all(rig), once);
        for (const auto& knob : rig.panel.knobs()) {
            if (knob->takes_value() && knob->kind() != Knob::Kind::kLink)
                other.panel.get(knob->name()).from_script(knob->text());
        }
        other.node.recall(memory);
        for (Rig* const r : {&fresh, &rig, &other}) r->stroke(c.tool, c.then);
        EXPECT_EQ(all(rig), all(fresh));
        EXPECT_EQ(all(other), all(fresh));

        Rig unused;
        unused.set("screen_color", "0.15,0.6,0.2");
        const KnobValues none(unused.panel);
        unused.stroke(c.tool, c.tried);
        none.restore();
        unused.node.recall(nullptr);
        Rig untouched;
        for (Rig* const r : {&unused, &untouched}) r->stroke(c.tool, c.then);
        EXPECT_EQ(all(unused), all(untouched));
    }
}

}  // namespace
