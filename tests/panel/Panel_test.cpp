#include "panel/Panel.h"

#include <gtest/gtest.h>

#include "ZoImage/Script.h"
#include "support/PanelOp.h"

using namespace Zo::Image;

namespace {

struct Panel : testing::Test {
    test::PanelOp op;
    KnobPanel panel{op};
};

// "NAME=VALUE"
void set(KnobPanel& panel, const std::string& setting) {
    const std::size_t sign = setting.find('=');
    panel.set_from_text(setting.substr(0, sign), setting.substr(sign + 1));
}

TEST_F(Panel, DefaultsAreThoseOfAFreshNode) {
    op.storage.brights = 7.0f;
    const KnobPanel later(op);
    EXPECT_EQ(later.get("brights").default_value(), 100.0);
    EXPECT_EQ(write_script(later), "Veloxa {\n    brights 7\n}\n");
}

TEST_F(Panel, LinksEditTheirKnobs) {
    const std::pair<const char*, const char*> links[] = {
        {"screen_correct_enable", "screen_correct"},
        {"shadow_enable", "shadow"},
        {"spill_suppression_enable", "spill_suppression"},
        {"cleanup_enable", "cleanup"},
        {"color_conformance_enable", "color_conformance"},
        {"film_enable", "film"},
        {"overlay_toolbar", "overlay_mode"},
    };
    for (const auto& [link, knob] : links) {
        const double before = panel.get(knob).get_value();
        panel.set_from_text(link, before != 0.0 ? "0" : "1");
        EXPECT_NE(panel.get(knob).get_value(), before) << link;
        EXPECT_EQ(panel.get(link).tooltip(), panel.get(knob).tooltip());
    }
}

TEST_F(Panel, TabsFollowTheirEnables) {
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
    EXPECT_FALSE(panel.get("cleanup_blur").enabled());
    EXPECT_TRUE(panel.get("spill_cool").enabled());
    for (const auto& c : cases) {
        for (const char* const setting : c.settings) set(panel, setting);
        EXPECT_EQ(panel.get(c.knob).enabled(), c.enabled) << c.settings[0] << " " << c.knob;
    }
}

TEST_F(Panel, SaysWhichKnobsItActsOn) {
    for (const char* const name :
         {"toolbar_screen", "screen_color", "toolbar_addoverlay", "toolbar_removeoverlay", "toolbar_addmatte",
          "toolbar_removenoise", "toolbar_restorespill", "toolbar_removespill", "toolbar_matchcolor",
          "toolbar_matchshadow", "toolbar_holdShadow", "toolbar_restoreDetail", "toolbar_unmixown",
          "shadows_tint", "reset", "film", "shadow_enable"}) {
        EXPECT_EQ(op.refs.knob_changed(panel.find(name)), 1) << name;
    }
    for (const char* const name :
         {"brights", "overlay_mode", "overlay_toolbar", "us_add_overlay", "invert"}) {
        EXPECT_EQ(op.refs.knob_changed(panel.find(name)), 0) << name;
    }
    EXPECT_EQ(op.refs.knob_changed(nullptr), 0);
    EXPECT_EQ(PanelKnobs{}.knob_changed(panel.find("film")), 0);
}

TEST_F(Panel, ToolsShowTheColoursThatTheyPick) {
    panel.set_from_text("screen_color", "0.25,0.5,0.75");
    panel.set_from_text("shadows_tint", "1,2,3");
    EXPECT_EQ(panel.get("toolbar_screen").get_value(2), 0.75);
    EXPECT_EQ(panel.get("toolbar_matchshadow").get_value(1), 2.0);
    EXPECT_EQ(panel.get("toolbar_matchcolor").get_value(1), 0.0);
}

TEST_F(Panel, ResetsRestoreTheirTabAndClearItsSamples) {
    // The names are those of saved scripts.
    const auto spoil = [&] {
        for (const char* const name :
             {"screen_orphans=0", "spill_cool=0", "brights=0", "spill_suppression=0",
              "screen_tolerance=1,1,1", "spill_backgroundveiling=1,1,1", "us_add_overlay=1 2 3 4",
              "us_add_overlay_cp=1 2 3 4", "us_remove_ovelray=1 2 3 4", "us_remove_ovelray_cp=1 2 3 4",
              "us_restore_spill=1 2 3 4", "us_remove_spill=1 2 3 4", "unmix_method=unmix", "unmix_veil=0.1",
              "us_unmix_backing=1 2 3 4", "us_unmix_solid=1 2 3 4", "us_unmix_see_through=1 2 3 4",
              "us_unmix_own=1 2 3 4"}) {
            set(panel, name);
        }
    };
    const auto samples = [&] {
        std::string counts;
        for (int i = 0; i < kSampleActions; ++i)
            counts += std::to_string(op.refs.samples(static_cast<SampleAction>(i))->count());
        return counts;
    };
    std::vector<Knob*> resets;
    for (const auto& knob : panel.knobs()) {
        if (knob->name() == "reset") resets.push_back(knob.get());
    }
    ASSERT_EQ(resets.size(), 3U);

    spoil();
    panel.press(*resets[0]);
    EXPECT_EQ(op.storage.screen_orphans, 1);
    EXPECT_EQ(op.storage.screen_tolerance, (KnobStorage::Color{0.51f, 0.51f, 0.52f}));
    EXPECT_EQ(op.storage.spill_cool, 0.0f);
    EXPECT_EQ(samples(), "0000111111");

    spoil();
    panel.press(*resets[1]);
    EXPECT_EQ(op.storage.spill_cool, 50.0f);
    EXPECT_EQ(op.storage.spill_backgroundveiling[1], 0.4f);
    EXPECT_FALSE(op.storage.spill_suppression);
    EXPECT_EQ(op.storage.screen_orphans, 0);
    EXPECT_EQ(op.storage.brights, 0.0f);
    EXPECT_EQ(samples(), "1111001111");

    spoil();
    panel.press(*resets[2]);
    EXPECT_FALSE(op.storage.unmixes());
    EXPECT_EQ(op.storage.unmix_veil, 0.7f);
    EXPECT_EQ(samples(), "1111110000");
}

}  // namespace
