// The toolbar's tools on a small picture of patches: after a stroke the stage it is about says, in the
// picture, what the user asked; once more changes nothing; other tabs stay as they were.
#include <gmock/gmock.h>

#include <atomic>
#include <limits>
#include <stdexcept>

#include "ZoImage/Script.h"
#include "tools/PatchRig.h"

using namespace test;

namespace {

constexpr const char* kNoiseKnobs = "cleanup cleanup_cleanup cleanup_recover";
constexpr const char* kOverlay =
    "screen_tolerance screen_darks_red_smaller screen_darks_red_larger screen_brights_red_smaller "
    "screen_brights_red_larger";

TEST(Tools, WhatWasAskedIsInThePicture) {
    const struct {
        const char* tool;
        const Box* box;
        const char* stage;
        Values before, after;  // of its alpha
        std::string may_turn;
        const char* overlay = "off";
    } cases[] = {
        {"addoverlay", &kShade, "clearRegion", kNone, kFull, kOverlay},
        {"addoverlay", &kNoise, "clearRegion", kNone, kFull, kOverlay},
        {"removeoverlay", &kBacking, "clearRegion", kFull, kNone, kOverlay},
        {"addoverlay", &kBacking, "clearRegion", kFull, kNone, kOverlay, "subject"},
        {"removeoverlay", &kShade, "clearRegion", kNone, kFull, kOverlay, "subject"},
        {"addmatte", &kGrey, "outputMatte", {1.0f, 200.0f}, kNone, "brights darks warm cool"},
        {"addmatte", &kCloth, "outputMatte", {20.0f, 255.0f}, kNone, "darks"},
        {"removenoise", &kNoise, "cleanup", {100.0f, 254.0f}, kFull, kNoiseKnobs},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.tool) + " at " + std::to_string(c.box->x));
        Rig rig;
        rig.set("overlay_mode", c.overlay);
        const Values before = rig.span(c.stage, kAlpha, *c.box);
        EXPECT_GE(before.first, c.before.first);
        EXPECT_LE(before.second, c.before.second);
        rig.stroke(c.tool, *c.box);
        EXPECT_EQ(rig.span(c.stage, kAlpha, *c.box), c.after) << rig.told();
        EXPECT_TRUE(rig.satisfied()) << rig.told();
        EXPECT_THAT(words(rig.turned()),
                    testing::IsSubsetOf(words(c.may_turn + " screen_color overlay_mode")));
        EXPECT_FALSE(rig.turns(c.tool, *c.box)) << rig.told();
    }
}

// The solver does with the other knobs what it can, and where there is none of them it leaves no trace.
TEST(Tools, HeldKnobsStay) {
    const std::string overlay = kOverlay;
    const struct {
        const char* tool;
        const Box* box;
        std::string hold;
        std::string hold_too = "";  // without which the tool still finds an answer
        const char* stage = "";
        Values after = {};
    } cases[] = {
        {"addoverlay", &kShade, "screen_tolerance", overlay.substr(overlay.find(' ')), "clearRegion", kFull},
        {"addmatte", &kGrey, "brights", "darks warm cool", "outputMatte", kNone},
        {"removenoise", &kNoise, "cleanup_recover", "cleanup", "cleanup", kFull},
        {"screen", &kLeaf, "screen_color"},
        {"find_screen", &kLeaf, "screen_color"},
        {"matchshadow", &kLeaf, "shadows_tint"},
        {"restorespill", &kLeaf, "spill_suppression"},
        {"removespill", &kLeaf, "spill_suppression"},
        {"matchcolor", &kLeaf, "color_conformance"},
        {"holdShadow", &kLeaf, "cleanup_recover"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.tool);
        Rig rig;
        rig.set("spill_suppression", "0");
        rig.hold(c.hold + ' ' + c.hold_too);
        const std::string script = write_script(rig.panel);
        rig.stroke(c.tool, *c.box);
        EXPECT_EQ(write_script(rig.panel), script);
        EXPECT_FALSE(rig.report().notes.empty()) << rig.told();
        EXPECT_THAT(rig.report().held, testing::Contains(c.hold));
        if (c.hold_too.empty()) continue;
        rig.hold(c.hold_too, false);
        rig.stroke(c.tool, *c.box);
        EXPECT_EQ(rig.span(c.stage, kAlpha, *c.box), c.after) << rig.told();
        EXPECT_FALSE(rig.panel.get(c.hold).differs_from_default());
    }
}

TEST(Tools, SpillComesBackAndGoes) {
    Rig rig;
    const auto primary = [&](const char* stage) { return rig.span(stage, kGreen, kLeaf); };
    EXPECT_LT(primary("spillSuppression").second, primary("outputMatte").second - 5.0f);
    rig.stroke("restorespill", kLeaf);
    const Values in = primary("outputMatte"), out = primary("spillSuppression");
    EXPECT_NEAR(out.first, in.first, 4.0f);  // 2 at the mean, 2 for the grain
    EXPECT_NEAR(out.second, in.second, 4.0f);
    EXPECT_FALSE(rig.turns("restorespill", kLeaf));

    rig.set("brights", "1000");  // solid, so that the green stays in it
    rig.set("spill_warm", "-200");
    rig.set("spill_cool", "-200");
    const auto most = [&](Channel c) { return rig.span("spillSuppression", c, kGrey).second; };
    const auto excess = [&] { return most(kGreen) - std::max(most(kRed), most(kBlue)); };
    EXPECT_GT(excess(), 5.0f);
    rig.stroke("removespill", kGrey);
    EXPECT_LE(excess(), 2.0f) << rig.told();  // 1 at the mean, 1 for the grain

    rig.reset("Spill");
    EXPECT_EQ(rig.turned(), "screen_color brights");
}

TEST(Tools, HeldShadowStaysWhereNoiseGoes) {
    for (const char* tool : {"holdShadow", "restoreDetail"}) {
        Rig rig;
        rig.stroke("removenoise", kNoise);
        const Values keyed = rig.span("outputMatte", kAlpha, kShade);
        EXPECT_NE(rig.span("cleanup", kAlpha, kShade), keyed);
        rig.stroke(tool, kShade);
        EXPECT_EQ(rig.span("cleanup", kAlpha, kShade), keyed);
        rig.stroke("removenoise", kNoise);
        EXPECT_EQ(rig.span("cleanup", kAlpha, kNoise), kFull) << rig.told();
        EXPECT_EQ(rig.span("cleanup", kAlpha, kShade), keyed) << rig.told();
        EXPECT_EQ(rig.turned(), std::string("screen_color ") + kNoiseKnobs);
        // What no place of the slider gives is left as it is.
        for (const Box* box : {&kBacking, &kGrey, &kNoise}) rig.stroke(tool, *box);
        EXPECT_LE(rig.panel.get("cleanup_recover").get_value(), 1.0) << rig.told();
    }
}

TEST(Tools, ColoursMatchTheBackground) {
    Rig rig;
    rig.stroke("matchcolor", kWarm);
    rig.stroke("matchcolor", kWarm);
    for (const Channel c : {kRed, kGreen, kBlue}) {
        const float wanted = 255.0f * (0.1f * static_cast<float>(c) + 0.1f);  // below the knee
        const auto [low, high] = rig.span("colorCorrection", c, kWarm);
        EXPECT_NEAR(0.5f * (low + high), wanted, 10.0f) << rig.told();
    }
    const ControlTriple bg = rig.node.controls().get(controls::kBgSample);
    EXPECT_EQ(bg, (ControlTriple{51, 102, 76}));  // red, blue, green
}

TEST(Tools, ColoursArePicked) {
    Rig rig;
    rig.set("screen_color", "0,0,0");
    rig.stroke("screen", kBacking);
    const double wanted[] = {0.15, 0.6, 0.2};
    const Knob& color = rig.panel.get("screen_color");
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(color.get_value(i), wanted[i], 0.002);
        EXPECT_EQ(rig.panel.get("toolbar_screen").get_value(i), color.get_value(i));
    }
    rig.stroke("screen", kBroken);
    EXPECT_NEAR(color.get_value(1), 0.6, 0.002);

    rig.stroke("matchshadow", kBacking);  // 0.2, 0.3, 0.4: 0.9 needs 0.85 four times
    double sum = 0.0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(rig.panel.get("shadows_tint").get_value(i), (0.2 + 0.1 * i) * 0.52200625, 1e-6) << i;
        sum += rig.panel.get("toolbar_matchshadow").get_value(i);
    }
    EXPECT_LE(sum, 0.5);
}

TEST(Tools, BackingKeepsItsMatteWithoutScreenCorrection) {
    Rig rig;
    rig.set("screen_correct", "0");
    const Values before = rig.span("outputMatte", kAlpha, kBacking);
    for (const Box* box : {&kGrey, &kLeaf, &kShade, &kNoise, &kBacking}) {
        rig.stroke("addmatte", *box);
        const Values after = rig.span("outputMatte", kAlpha, kBacking);
        EXPECT_NEAR(after.first, before.first, 1.0f) << rig.told();
        EXPECT_NEAR(after.second, before.second, 1.0f) << rig.told();
    }
}

// The rim of the stroke would stay in the picture, since the half light around it is no screen area.
TEST(Tools, AStrokeWithinWhatIsWrongIsTransparentToItsMargin) {
    Rig rig;
    const Box part{28, 26, 36, 34};
    rig.patches.push_back({{24, 22, 40, 38}, {0.28f, 0.5f, 0.3f}});
    rig.patches.push_back({part, {0.26f, 0.52f, 0.28f}});
    EXPECT_GT(rig.span("", kAlpha, part).first, 0.0f);
    rig.use("addoverlay", {28, 26, 36, 34});
    EXPECT_THAT(render(rig.node, part).planes[kAlpha], testing::Each(0.0f)) << rig.told();
}

TEST(Tools, ContradictionsGoToTheNewerStroke) {
    Rig rig;
    rig.stroke("addoverlay", kShade);
    rig.stroke("removeoverlay", kShade);
    EXPECT_EQ(rig.span("clearRegion", kAlpha, kShade), kNone);
    EXPECT_FALSE(rig.satisfied()) << rig.told();
    EXPECT_FALSE(rig.turns("removeoverlay", kShade));
    rig.stroke("addoverlay", kShade);
    EXPECT_EQ(rig.span("clearRegion", kAlpha, kShade), kFull);

    rig.reset("Screen Correct");
    EXPECT_EQ(rig.turned(), "screen_color");
}

// A script brings the means along, not the pixels; the knobs that it sets satisfy them.
TEST(Tools, AnUndoneStrokeAsksForNothingAnyMore) {
    Rig rig, other;
    for (Rig* const r : {&rig, &other}) r->stroke("addoverlay", kNoise);
    const std::string before = rig.values();
    rig.stroke("addoverlay", kShade);
    const auto samples = [&] { return rig.panel.get("us_add_overlay").text(true); };
    const std::string two = samples();
    while (samples() == two || rig.values() != before) ASSERT_TRUE(rig.panel.undo());
    for (const char* const tool : {"unmixsolid", "removeoverlay"}) {
        for (Rig* const r : {&rig, &other}) r->stroke(tool, kShade);
    }
    EXPECT_EQ(rig.values(), other.values());
    EXPECT_TRUE(rig.satisfied()) << rig.told();
}

// What of a held list is right stays right, though a newer stroke contradicts it.
TEST(Tools, ASavedScriptNeedsNoFurtherTuning) {
    Rig rig, other;
    rig.stroke("addoverlay", kShade);
    rig.stroke("removeoverlay", kWarm);
    rig.stroke("restorespill", kLeaf);
    apply_script(other.panel, read_script(write_script(rig.panel), "s").at(0), "s");
    EXPECT_EQ(other.values(), rig.values());
    EXPECT_FALSE(other.turns("removeoverlay", kWarm));
    EXPECT_FALSE(other.turns("restorespill", kLeaf));

    other.hold("us_add_overlay us_remove_ovelray");
    const auto lists = [&] { return other.text("us_add_overlay") + '/' + other.text("us_remove_ovelray"); };
    const std::string before = lists();
    other.stroke("removeoverlay", kShade);
    EXPECT_EQ(lists(), before);
    EXPECT_EQ(other.span("clearRegion", kAlpha, kShade).second, 255.0f) << other.told();
}

// A stroke without a plate is one sample of the screen's colour. Scripts of before have it once for each
// pixel.
TEST(Tools, ASavedListHoldsWhatWasSampled) {
    Rig rig, other, old;
    for (Rig* const r : {&rig, &other, &old})
        r->patches = {kPatches.begin(), kPatches.begin() + 5};  // numbers
    const char* const kList = "us_add_overlay_cp";
    const std::string sample = "0.15 0.6 0.2 0 ";
    std::string copies;
    for (int i = 0; i < 100; ++i) copies += sample;
    rig.stroke("addoverlay", kNoise);
    EXPECT_EQ(rig.text(kList), sample);
    for (Rig* const r : {&other, &old})
        apply_script(r->panel, read_script(write_script(rig.panel), "s").at(0), "s");
    EXPECT_EQ(other.values(true), rig.values(true));
    EXPECT_EQ(render(other.node, kFrame).planes, render(rig.node, kFrame).planes);
    old.set(kList, copies);
    EXPECT_EQ(old.text(kList), copies);
    // With a plate, too, each stroke keeps its own.
    for (Rig* const r : {&other, &old}) {
        r->stroke("removeoverlay", kWarm);
        r->node.set_input(1, &r->bg);
        r->stroke("addoverlay", kShade);
    }
    EXPECT_EQ(old.values(), other.values());
    EXPECT_EQ(old.told(), other.told());
}

TEST(Tools, SurviveWhatIsNoColour) {
    Rig all;
    for (const auto& knob : all.panel.knobs()) {
        if (knob->kind() != Knob::Kind::kToolButton) continue;
        const std::string tool = knob->name();
        Rig rig;
        EXPECT_FALSE(rig.turns(tool, {9, 9, 5, 5})) << tool;
        EXPECT_FALSE(rig.turns(tool, {-2000000000, 0, 2000000000, 2000000000})) << tool;
        EXPECT_EQ(rig.report().samples(), 0) << rig.told();
        for (const Box* box : {&kHuge, &kBacking, &kBroken}) rig.stroke(tool, *box);
        EXPECT_GT(rig.report().samples(), 0) << tool << rig.told();
    }
}

TEST(Tools, FindTheScreen) {
    Rig rig;
    Knob& button = rig.panel.get("find_screen");
    for (int choice = 0; choice < 4; ++choice) {
        const std::string& wanted = button.items()[static_cast<std::size_t>(choice)];
        SCOPED_TRACE(wanted);
        button.set_value(choice);
        rig.set("screen_color", "0.5,0.5,0.5");
        rig.use("find_screen");
        const bool there = wanted == "auto" || wanted == "green";
        EXPECT_EQ(rig.report().failure.empty(), there) << rig.told();
        EXPECT_EQ(rig.report().changes.size(), there ? 1U : 0U);
        EXPECT_NEAR(rig.panel.get("screen_color").get_value(1), there ? 0.6 : 0.5, 0.005) << rig.told();
        EXPECT_EQ(rig.report().box, kFrame);
    }
}

// At some row of the foreground a render throws, or the user gives the tool up.
TEST(Tools, LeaveNothingHalfDone) {
    const struct {
        const char* tool;
        const Box* box;
        const char* knob;  // that it tries values of, or begins with
        const char* value;
    } cases[] = {{"restorespill", &kLeaf, "spill_backgroundveiling", "0.1,0.2,0.3"},
                 {"addoverlay", &kShade, "screen_shrink", "3,3"},
                 {"set_up", &kBacking, "screen_color", "0,0,0"}};
    constexpr int kNever = std::numeric_limits<int>::max();
    for (const auto& c : cases) {
        const auto prepare = [&](Rig& rig) {
            rig.stroke("addoverlay", kNoise);
            rig.set(c.knob, c.value);
        };
        std::atomic<int> pixels{0};
        const auto count = [&](Channel channel, int x, int y) {
            ++pixels;
            return plate(kPatches, channel, x, y);
        };
        Rig whole;
        prepare(whole);
        whole.fg.set_pixel(count);
        whole.stroke(c.tool, *c.box);
        const int all = pixels;
        for (const bool thrown : {true, false}) {
            AbortFlag abort;
            int last = kNever;
            Rig rig(NodeContext{"", nullptr, &abort});
            prepare(rig);
            rig.fg.set_pixel([&](Channel channel, int x, int y) {
                if (pixels > last && thrown) throw std::runtime_error("no picture");
                if (pixels > last) abort.raise();
                return count(channel, x, y);
            });
            const std::string before = rig.values(true);
            for (const double part : {0.1, 0.5, 0.9}) {
                SCOPED_TRACE(c.tool + std::string(thrown ? " throws at " : " stops at ") +
                             std::to_string(part));
                pixels = 0;
                last = static_cast<int>(part * all);
                if (thrown) {
                    EXPECT_THROW(rig.stroke(c.tool, *c.box), std::runtime_error);
                } else {
                    rig.stroke(c.tool, *c.box);
                    EXPECT_TRUE(rig.reports.empty() && abort.raised());
                }
                EXPECT_EQ(rig.values(true), before);
                abort.clear();
            }
            last = kNever;
            rig.stroke(c.tool, *c.box);
            EXPECT_EQ(rig.values(true), whole.values(true)) << c.tool << ": something was remembered";
            EXPECT_NE(rig.values(true), before) << c.tool;
        }
    }
}

}  // namespace
