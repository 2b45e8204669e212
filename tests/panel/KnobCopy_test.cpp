#include "panel/KnobCopy.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "panel/InputFlags.h"
#include "support/PanelOp.h"

namespace {

struct Copy {
    Copy() : controls(values.data(), 1) {}
    void operator()(std::uint32_t flags = 0) { copy_knobs(op.storage, flags, controls); }

    std::array<std::int32_t, ControlBlock::kCount> values{};
    ControlBlock controls;
    test::PanelOp op;
    Zo::Image::KnobPanel panel{op};
};

// On a green screen, so a triple lands as red, blue, green. A level x above 0.5 is encoded as
// 0.5 + 0.5 (x - 0.5) / (x + 0.5), times 255; below, as 255 x.
struct Row {
    const char* knob;
    const char* text;
    std::vector<std::pair<int, std::int32_t>> expected;  // control and value
};
const Row kRows[] = {
    {"screen_color", "0.2,0.65,0.3", {{75, 51}, {76, 76}, {77, 144}, {120, 1}}},  // 51, 144.13, 76.5
    {"screen_tolerance", "0.61,0.25,0.9", {{37, 56}, {38, 156}, {39, -127}}},     // of 0.22, -0.5, 0.8
    {"screen_brights_red_smaller", "120.9", {{29, 120}}},
    {"screen_darks_red_smaller", "7", {{30, 7}}},
    {"screen_brights_red_larger", "130", {{31, 130}}},
    {"screen_darks_red_larger", "-8.5", {{32, -8}}},
    {"screen_shrink", "3.9,7.2", {{40, 3}}},
    {"screen_orphans", "fine", {{232, 6}}},
    {"brights", "150", {{79, 150}, {72, 100}}},
    {"darks", "20", {{80, 20}}},
    {"cool", "-12.7", {{81, -12}}},
    {"warm", "33", {{82, 33}}},
    {"edge_kernel", "5.7", {{85, 5}, {86, 5}}},
    {"shadows_tint", "0.1,0.21,0.3", {{161, 25}, {162, 76}, {163, 53}}},
    {"shadows_density", "77", {{65, 77}}},
    {"shadows_high", "0.8", {{66, 156}}},
    {"shadows_low", "0.25", {{67, 63}}},
    {"shadows_blur", "4,5.5", {{68, 4}, {69, 5}}},
    {"spill_ambience", "0.1,0.21,0.3", {{115, 25}, {116, 76}, {117, 53}, {83, 128}}},
    {"spill_darks", "3", {{105, 3}}},
    {"spill_brights", "120", {{111, 120}}},
    {"spill_midtones", "-4", {{110, -4}}},
    {"spill_cool", "11", {{106, 11}}},
    {"spill_warm", "12", {{107, 12}}},
    {"spill_strength", "60", {{118, 60}}},
    {"spill_backgroundveiling", "0.21,0.41,0.61", {{173, 52}, {174, 152}, {175, 102}, {100, 100}}},
    {"cleanup_shrink", "12,13", {{55, 12}, {56, 13}}},
    {"cleanup_blur", "2,3", {{57, 2}, {58, 3}}},
    {"cleanup_cleanup", "111", {{63, 111}, {60, 100}}},
    {"cleanup_recover", "0.25", {{62, 63}}},
    {"film_transparency", "222", {{4, 222}}},
    {"film_correction", "0.25,-0.5,0.75", {{11, 25}, {12, -50}, {13, 75}}},
    {"film_strength", "9", {{10, 9}}},
    {"film_shrink", "4,5", {{8, 4}}},
    {"film_brights", "210", {{7, 210}}},
    {"film_darks", "6", {{5, 6}}},
    {"color_darks", "0.25,0.5,1", {{202, -50}, {207, 100}, {212, 0}}},
    {"color_midtones", "0,0.75,0.5", {{204, -100}, {209, 0}, {214, 50}}},
    {"color_brights", "0.25,0.5,1", {{203, 50}, {208, 200}, {213, 100}}},
    {"color_hue", "5", {{234, 5}}},
    {"color_saturation", "-6", {{235, -6}}},
    {"color_brightness", "7", {{236, 7}}},
};

// Or keeps them, in a tab that is off.
TEST(KnobCopy, EveryKnobReachesItsControls) {
    const std::set<int> kept{4,   5,   7,   8,   10,  11,  12,  13,  55,  56,  57,  58,  62,  63,  65,
                             66,  67,  68,  69,  105, 106, 107, 110, 111, 115, 116, 117, 118, 161, 162,
                             163, 202, 203, 204, 207, 208, 209, 212, 213, 214, 234, 235, 236};
    const Copy fresh;
    for (const bool on : {true, false}) {
        Copy copy;
        auto& k = copy.op.storage;
        k.shadow = true;  // without screen correction it does nothing
        k.film = k.screen_correct = k.spill_suppression = k.cleanup = k.color_conformance = on;
        for (const Row& row : kRows) copy.panel.set_from_text(row.knob, row.text);
        copy();
        for (const Row& row : kRows) {
            for (const auto& [control, value] : row.expected) {
                const bool stays = !on && kept.count(control) == 1;
                EXPECT_EQ(copy.controls.get(control), stays ? fresh.controls.get(control) : value)
                    << row.knob << " " << control;
            }
        }
        EXPECT_EQ(copy.controls.stored(5), on ? -6 : fresh.controls.stored(5));
        EXPECT_EQ(copy.controls.overlayShrinkV, 7);
        EXPECT_EQ(copy.controls.subjectShrinkV, on ? 5 : 2);
        EXPECT_EQ(copy.controls.dirty(), ControlBlock::kClean);
    }
}

// A knob that is new, or has another name, is missed here.
TEST(KnobCopy, EveryKnobIsOneOfThese) {
    std::set<std::string> known{"film",          "screen_correct",    "shadow",       "spill_suppression",
                                "cleanup",       "color_conformance", "overlay_mode", "overlay_mono",
                                "overlay_color", "output_mode",       "matte_scale",  "merge",
                                "unmix_method",  "unmix_veil",        "unmix_solid",  "unmix_detail",
                                "unmix_denoise", "unmix_folds",       "unmix_spill",  "unmix_encoding",
                                "unmix_opacity", "highlights"};
    for (const Row& row : kRows) known.insert(row.knob);
    Copy copy;
    std::set<std::string> names;
    for (const auto* knob : copy.op.refs.settings()) names.insert(knob->name());
    EXPECT_EQ(names, known);
}

TEST(KnobCopy, PrimaryIsTheGreatestComponentAlone) {
    const struct {
        KnobStorage::Color color;
        std::array<std::int32_t, 4> expected;  // role 0, role 1, primary, "ColorIndex"
    } cases[] = {
        {{0.1f, 0.21f, 0.3f}, {25, 53, 76, 0}},
        {{0.3f, 0.301f, 0.1f}, {76, 25, 76, 1}},  // apart before truncation only
        {{0.6f, 0.1f, 0.21f}, {53, 25, 139, 2}},  // 0.5 + 0.05 / 1.1 is 139.09
        {{0.3f, 0.3f, 0.1f}, {76, 76, 25, 0}},    // two alike
        {{0.0f, 0.0f, 0.0f}, {0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        Copy copy;
        copy.op.storage.screen_color = c.color;
        copy();
        EXPECT_EQ((std::array{copy.values[75], copy.values[76], copy.values[77], copy.values[120]}),
                  c.expected)
            << &c - cases;
    }
}

TEST(KnobCopy, StatesOfInputsAndScreenCorrection) {
    Copy copy;
    for (std::uint32_t flags = 0; flags < 16; ++flags) {
        copy(flags);
        EXPECT_EQ(copy.values[122], (flags & 1) != 0);
        EXPECT_EQ(copy.values[191], (flags & 2) != 0);
        EXPECT_EQ(copy.values[192], (flags & 4) != 0);
    }
    for (const bool correct : {false, true}) {
        for (const std::int32_t overlay : {0, 1, 2}) {
            copy.op.storage.screen_correct = correct;
            copy.op.storage.overlay_mode = overlay;
            copy();
            EXPECT_EQ(copy.values[123], correct || overlay != 0);
        }
    }
}

TEST(KnobCopy, ValuesOutsideTheIntegersAreDefined) {
    Copy copy;
    copy.op.storage.brights = std::numeric_limits<float>::quiet_NaN();
    copy.op.storage.darks = 1e30f;
    copy.op.storage.screen_shrink = {-1e300, std::numeric_limits<double>::infinity()};
    copy.op.storage.encodePivot[0] = 2.0f;
    copy.op.storage.screen_color = {1.5f, 0.0f, 0.0f};  // below its pivot: 382.5
    copy();
    constexpr auto kIndefinite = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(copy.values[79], kIndefinite);
    EXPECT_EQ(copy.controls.get(80), kIndefinite);
    EXPECT_EQ(copy.values[40], kIndefinite);
    EXPECT_EQ(copy.controls.overlayShrinkV, kIndefinite);
    EXPECT_EQ(copy.values[77], 382);
}

}  // namespace
