#include "panel/Panel.h"

#include <gtest/gtest.h>

#include "ZoImage/Script.h"
#include "support/PanelOp.h"

using namespace Zo::Image;
using test::PanelOp;

namespace {

// Saved scripts depend on these names.
TEST(Panel, KnobsInOrder) {
    PanelOp op;
    const KnobPanel panel(op);
    std::string list;
    for (const auto& knob : panel.knobs()) {
        if (knob->kind() == Knob::Kind::kText) {
            list += knob->label() == " " ? "_ " : "'" + knob->label() + "' ";
        } else if (knob->kind() == Knob::Kind::kToolbarSeparator) {
            list += "| ";
        } else if (knob->kind() == Knob::Kind::kTab) {
            list += "[" + knob->label() + "] ";
        } else {
            list += knob->name() + " ";
        }
    }
    EXPECT_EQ(
        list,
        "screen_color _ film screen_correct shadow spill_suppression _ cleanup color_conformance _ "
        "overlay_mode overlay_mono invert overlay_color _ output_mode "
        "[Density] brights darks edge_kernel warm cool "
        "[Screen Correct] screen_correct_enable screen_tolerance screen_shrink screen_darks_red_smaller "
        "screen_darks_red_larger screen_brights_red_smaller screen_brights_red_larger screen_orphans "
        "reset "
        "[Shadows] shadow_enable shadows_high shadows_low shadows_density shadows_blur shadows_tint "
        "[Spill] spill_suppression_enable spill_cool spill_warm spill_midtones spill_brights "
        "spill_darks spill_ambience spill_strength spill_backgroundveiling reset "
        "[Cleanup] cleanup_enable cleanup_cleanup cleanup_shrink cleanup_blur cleanup_recover "
        "[Color] color_conformance_enable color_darks color_midtones color_brights color_hue "
        "color_saturation color_brightness "
        "[Film] film_enable film_transparency film_correction film_strength film_shrink film_brights "
        "film_darks "
        "[Output] matte_scale merge "
        "veloxa_toolbar toolbar_screen | 'overlay' toolbar_addoverlay toolbar_removeoverlay "
        "overlay_toolbar | 'matte' toolbar_addmatte toolbar_removenoise | 'spill' toolbar_restorespill "
        "toolbar_removespill | 'match' toolbar_matchcolor toolbar_matchshadow | toolbar_holdShadow "
        "toolbar_restoreDetail  us_add_overlay us_add_overlay_cp us_remove_ovelray "
        "us_remove_ovelray_cp us_restore_spill us_remove_spill find_screen set_up ");
}

TEST(Panel, DefaultsAreThoseOfAFreshNode) {
    PanelOp op;
    op.storage.brights = 7.0f;
    const KnobPanel panel(op);
    EXPECT_EQ(panel.get("brights").default_value(), 100.0);
    EXPECT_EQ(write_script(panel), "Veloxa {\n    brights 7\n}\n");
}

TEST(Panel, LinksEditTheirKnobs) {
    const std::pair<const char*, bool KnobStorage::*> links[] = {
        {"screen_correct_enable", &KnobStorage::screen_correct},
        {"shadow_enable", &KnobStorage::shadow},
        {"spill_suppression_enable", &KnobStorage::spill_suppression},
        {"cleanup_enable", &KnobStorage::cleanup},
        {"color_conformance_enable", &KnobStorage::color_conformance},
        {"film_enable", &KnobStorage::film}};
    PanelOp op;
    KnobPanel panel(op);
    for (const auto& [link, field] : links) {
        const bool before = op.storage.*field;
        panel.set_from_text(link, before ? "0" : "1");
        EXPECT_NE(op.storage.*field, before) << link;
    }
    panel.set_from_text("overlay_toolbar", "subject");
    EXPECT_EQ(op.storage.overlay_mode, 2);
}

TEST(Panel, TabsFollowTheirEnables) {
    const struct {
        const char* settings[2];
        const char* knob;
        bool enabled;
    } cases[] = {
        {{"film=0", "film=0"}, "film_strength", false},
        {{"film=1", "film=1"}, "film_strength", true},
        {{"film=0", "film=0"}, "film_enable", true},
        {{"screen_correct=1", "shadow=0"}, "shadows_tint", false},
        {{"screen_correct=0", "shadow=1"}, "shadows_tint", false},
        {{"screen_correct=0", "shadow=1"}, "screen_shrink", false},
        {{"screen_correct=1", "shadow_enable=1"}, "shadows_tint", true},
        {{"spill_suppression=0", "film=0"}, "spill_cool", false},
        {{"cleanup_enable=1", "film=0"}, "cleanup_blur", true},
        {{"color_conformance=0", "film=0"}, "color_hue", false},
        {{"color_conformance=0", "film=0"}, "brights", true},
    };
    PanelOp op;
    KnobPanel panel(op);
    EXPECT_FALSE(panel.get("cleanup_blur").enabled());
    EXPECT_TRUE(panel.get("spill_cool").enabled());
    for (const auto& c : cases) {
        for (const std::string setting : c.settings) {
            const std::size_t sign = setting.find('=');
            panel.set_from_text(setting.substr(0, sign), setting.substr(sign + 1));
        }
        EXPECT_EQ(panel.get(c.knob).enabled(), c.enabled) << c.settings[0] << " " << c.knob;
    }
}

TEST(Panel, SaysWhichKnobsItActsOn) {
    PanelOp op;
    KnobPanel panel(op);
    for (const char* const name :
         {"toolbar_screen", "screen_color", "toolbar_addoverlay", "toolbar_removeoverlay", "toolbar_addmatte",
          "toolbar_removenoise", "toolbar_restorespill", "toolbar_removespill", "toolbar_matchcolor",
          "toolbar_matchshadow", "toolbar_holdShadow", "toolbar_restoreDetail", "shadows_tint", "reset",
          "film", "shadow_enable"}) {
        EXPECT_EQ(op.refs.knob_changed(panel.find(name)), 1) << name;
    }
    for (const char* const name :
         {"brights", "overlay_mode", "overlay_toolbar", "us_add_overlay", "invert"}) {
        EXPECT_EQ(op.refs.knob_changed(panel.find(name)), 0) << name;
    }
    EXPECT_EQ(op.refs.knob_changed(nullptr), 0);
    EXPECT_EQ(PanelKnobs{}.knob_changed(panel.find("film")), 0);
}

TEST(Panel, ToolsShowTheColoursThatTheyPick) {
    PanelOp op;
    KnobPanel panel(op);
    panel.set_from_text("screen_color", "0.25,0.5,0.75");
    panel.set_from_text("shadows_tint", "1,2,3");
    EXPECT_EQ(panel.get("toolbar_screen").get_value(2), 0.75);
    EXPECT_EQ(panel.get("toolbar_matchshadow").get_value(1), 2.0);
    EXPECT_EQ(panel.get("toolbar_matchcolor").get_value(1), 0.0);
}

TEST(Panel, ResetsRestoreTheirTabAndClearItsSamples) {
    PanelOp op;
    KnobPanel panel(op);
    const auto spoil = [&] {
        for (const char* const name : {"screen_orphans", "spill_cool", "brights", "spill_suppression"}) {
            panel.set_from_text(name, "0");
        }
        panel.set_from_text("screen_tolerance", "1,1,1");
        panel.set_from_text("spill_backgroundveiling", "1,1,1");
        for (const auto& knob : panel.knobs()) {
            if (knob->kind() == Knob::Kind::kCustom) knob->from_script("1 2 3 4");
        }
    };
    const auto samples = [&] {
        std::string counts;
        for (int i = 0; i < 6; ++i)
            counts += std::to_string(op.refs.samples(static_cast<SampleAction>(i))->count());
        return counts;
    };
    std::vector<Knob*> resets;
    for (const auto& knob : panel.knobs()) {
        if (knob->name() == "reset") resets.push_back(knob.get());
    }
    ASSERT_EQ(resets.size(), 2U);

    spoil();
    panel.press(*resets[0]);
    EXPECT_EQ(op.storage.screen_orphans, 1);
    EXPECT_EQ(op.storage.screen_tolerance, (KnobStorage::Color{0.51f, 0.51f, 0.52f}));
    EXPECT_EQ(op.storage.spill_cool, 0.0f);
    EXPECT_EQ(samples(), "000011");

    spoil();
    panel.press(*resets[1]);
    EXPECT_EQ(op.storage.spill_cool, 50.0f);
    EXPECT_EQ(op.storage.spill_backgroundveiling[1], 0.4f);
    EXPECT_FALSE(op.storage.spill_suppression);
    EXPECT_EQ(op.storage.screen_orphans, 0);
    EXPECT_EQ(op.storage.brights, 0.0f);
    EXPECT_EQ(samples(), "111100");
}

}  // namespace
