// The automatic set-up on procedural plates, against the defaults and what is known to be true.
#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>

#include "ImageSource.h"
#include "PlateSet.h"
#include "ZoImage/Script.h"
#include "tools/ToolRig.h"

using namespace Zo::Image;

namespace {

using veloxa::Image;

constexpr int kWidth = 480;
constexpr int kHeight = 270;
// Left of the figure nothing but backing, but for the stand that the garbage matte is for.
constexpr Box kLeft{40, 120, 110, 260};

// Keys a plate whose foreground was changed by `change`.
struct Rig : test::ToolRig {
    explicit Rig(plate::Screen screen, std::uint64_t seed, const std::function<void(Image&)>& change = {})
        : set_of_plates(plate::render_set({kWidth, kHeight, seed, screen}, 0, 2)) {
        auto picture = std::make_shared<Image>(set_of_plates[plate::kForeground]);
        if (change) change(*picture);
        fg.set(picture, Hash{});
        node.set_input(0, &fg);
        set("screen_color", screen == plate::Screen::kBlue ? "0.09,0.22,0.6" : "0.14,0.6,0.24");
    }
    // The mean difference of the alpha from the true one.
    double error() {
        const test::Picture picture = test::render(node, 2);
        double sum = 0.0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const float truth = set_of_plates[plate::kAlphaTrue].line(kAlpha, y)[x];
                sum += std::fabs(static_cast<double>(picture.at(kAlpha, x, y) - truth));
            }
        }
        return sum / (kWidth * kHeight);
    }
    // What a front end does with a script: its knobs are held while the node sets itself up.
    void apply(const std::string& script) {
        const ScriptGroup group = read_script("Veloxa {\n" + script + "\n}", "script").at(0);
        apply_script(panel, group, "script");
        for (const ScriptEntry& entry : group.entries)
            panel.get(entry.name).target().set_flag(kKnobScripted | kKnobHeld, true);
    }

    plate::Set set_of_plates;
    veloxa::ImageSource fg{NodeContext{}};
};

TEST(AutoSetup, ComesNearerToTheTruthThanTheDefaults) {
    for (const plate::Screen screen : {plate::Screen::kGreen, plate::Screen::kBlue}) {
        for (const std::uint64_t seed : {1, 5, 9}) {
            Rig rig(screen, seed);
            const double before = rig.error();
            rig.use("set_up");
            EXPECT_LT(rig.error(), before)
                << "seed " << seed << (screen == plate::Screen::kBlue ? " blue" : "");
        }
    }
}

// Backing so pale that the region leaves it out, as where light falls on cloth.
void make_pale(Image& fg) {
    for (int y = kLeft.y; y < kLeft.t; ++y) {
        for (const Channel c : {kRed, kBlue}) {
            for (int x = kLeft.x; x < kLeft.r; ++x) fg.line(c, y)[x] += 0.07f;
        }
    }
}

TEST(AutoSetup, CoversPaleBacking) {
    for (const char* const overlay : {"off", "subject"}) {  // there the overlay tools change places
        Rig rig(plate::Screen::kGreen, 1, make_pale);
        const auto opaque = [&] {
            const test::Picture picture = test::render(rig.node, 2);
            int count = 0;
            for (int y = kLeft.y + 8; y < kLeft.t - 8; ++y) {
                for (int x = kLeft.x + 8; x < kLeft.r - 8; ++x) {
                    count += picture.at(kAlpha, x, y) > 0.0f ? 1 : 0;
                }
            }
            return count;
        };
        rig.set("overlay_mode", overlay);
        rig.set("matte_scale", "linear");
        ASSERT_GT(opaque(), 2000) << "the patch was meant to be left out by the default region";
        rig.use("set_up");
        EXPECT_EQ(opaque(), 0) << overlay;
    }
}

// On a plate where it turns matte_scale, merge, screen_tolerance, brights, cleanup and cleanup_cleanup.
TEST(AutoSetup, WorksAroundWhatIsSet) {
    using Names = std::vector<std::string>;
    const std::string list = "0.14 0.58 0.25 0";
    const struct {
        Names script;  // NAME VALUE
        Names sets;
        Names stay;       // NAME=VALUE as scripts hold it; noted
        Names moved;      // all the same
        Names kept = {};  // as a consequence
    } cases[] = {
        {{}, {"brights=150"}, {"brights=150"}, {"merge", "matte_scale", "cleanup"}},
        {{}, {"brights=100"}, {"brights=100"}, {"merge", "screen_tolerance"}},
        {{}, {"merge=multiply"}, {"merge=multiply"}, {"matte_scale", "brights"}},
        {{"merge multiply", "brights 90"},
         {"matte_scale=knee"},
         {"merge=multiply", "brights=90", "matte_scale=knee"},
         {"cleanup"}},
        {{"darks 1"}, {}, {"brights=100"}, {"merge"}},
        {{}, {"cleanup_enable=0"}, {"cleanup=false"}, {"brights"}},
        {{}, {"cleanup_cleanup=30"}, {"cleanup_cleanup=30"}, {"cleanup"}},
        {{}, {"cleanup_cleanup=400"}, {"cleanup_cleanup=400"}, {"brights"}, {"cleanup"}},
        {{},
         {"screen_tolerance=0.51,0.51,0.52"},
         {"screen_tolerance=0.51 0.51 0.52"},
         {"screen_brights_red_larger"}},
        {{},
         {"screen_tolerance=0.51,0.51,0.52", "screen_darks_red_larger=0", "screen_darks_red_smaller=0",
          "screen_brights_red_larger=100", "screen_brights_red_smaller=100"},
         {"screen_tolerance=0.51 0.51 0.52", "screen_darks_red_larger=0", "screen_brights_red_smaller=100"},
         {"brights"}},
        {{"us_add_overlay {" + list + "}"}, {}, {"us_add_overlay=" + list + " "}, {"screen_tolerance"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.stay));
        Rig rig(plate::Screen::kGreen, 1, make_pale);
        std::string script;
        for (const std::string& line : c.script) script += line + '\n';
        if (!script.empty()) rig.apply(script);
        for (const std::string& setting : c.sets) {
            const std::size_t equals = setting.find('=');
            rig.set(setting.substr(0, equals), setting.substr(equals + 1));
            rig.hold(setting.substr(0, equals));
        }
        const KnobValues before(rig.panel);
        rig.use("set_up");
        const std::string told = rig.told();
        for (const std::string& stays : c.stay) {
            const std::string name = stays.substr(0, stays.find('='));
            EXPECT_EQ(name + '=' + rig.text(name.c_str()), stays);
            EXPECT_NE(told.find('\n' + name + " stays"), std::string::npos) << name << " in" << told;
        }
        std::vector<std::string> moved;
        for (const KnobChange& change : before.changes()) moved.push_back(change.knob);
        EXPECT_THAT(moved, testing::IsSupersetOf(c.moved));
        for (const std::string& name : c.kept) EXPECT_THAT(moved, testing::Not(testing::Contains(name)));
    }
}

// A script has the knobs that strokes found and the means of some, not their pixels.
TEST(AutoSetup, UndoesNoStrokeOfAScript) {
    const Box cleared{15, 230, 45, 260};
    Rig made(plate::Screen::kBlue, 1);
    made.use("removeoverlay", {420, 187, 450, 217});
    made.use("addoverlay", {15, 230, 45, 260});
    const std::string script = write_script(made.panel);
    Rig rig(plate::Screen::kBlue, 1);
    rig.apply(script.substr(script.find('\n'), script.rfind('}') - script.find('\n')));
    const test::Picture before = test::render(rig.node, 2);
    rig.use("set_up");
    const test::Picture after = test::render(rig.node, 2);
    int undone = 0;
    for (int y = cleared.y; y < cleared.t; ++y) {
        for (int x = cleared.x; x < cleared.r; ++x) {
            undone += before.at(kAlpha, x, y) <= 0.0f && after.at(kAlpha, x, y) > 0.0f ? 1 : 0;
        }
    }
    EXPECT_EQ(undone, 0);
}

TEST(AutoSetup, FindsTheScreenWhereNoneIsChosen) {
    Rig rig(plate::Screen::kBlue, 1);
    Knob& color = rig.panel.get("screen_color");
    rig.set("screen_color", "0,0,0");
    rig.hold("screen_color");  // meant so
    rig.use("set_up");
    EXPECT_EQ(rig.text("screen_color"), "0 0 0");
    EXPECT_EQ(rig.told().find("find_screen"), std::string::npos);
    rig.hold("screen_color", false);
    rig.use("set_up");
    EXPECT_NEAR(color.get_value(2), 0.6, 0.1) << rig.told();
    EXPECT_THAT(test::words(rig.turned()), testing::Contains("merge"));
    Rig grey(plate::Screen::kBlue, 1, [](Image& fg) {
        for (const Channel c : kMaskRgb) std::fill_n(fg.line(c, 0), kWidth * kHeight, 0.4f);
    });
    grey.set("screen_color", "0,0,0");
    grey.use("set_up");
    EXPECT_NE(grey.report().failure, "");
    EXPECT_EQ(grey.turned(), "");
}

TEST(AutoSetup, SurvivesPlatesWithNothingToGoBy) {
    const std::function<void(Image&)> changes[] = {
        [](Image& fg) {  // backing alone
            for (const Channel c : kMaskRgb)
                std::fill_n(fg.line(c, 0), kWidth * kHeight, c == kGreen ? 0.6f : 0.15f);
        },
        [](Image& fg) {  // no backing at all
            for (const Channel c : kMaskRgb) std::fill_n(fg.line(c, 0), kWidth * kHeight, 0.4f);
        },
        [](Image& fg) {
            for (const Channel c : kMaskRgb)
                std::fill_n(fg.line(c, 100), 40 * kWidth, std::numeric_limits<float>::quiet_NaN());
        },
    };
    for (const auto& change : changes) {
        Rig rig(plate::Screen::kGreen, 1, change);
        rig.use("set_up");
        EXPECT_GE(rig.panel.get("brights").get_value(), 50.0);
        EXPECT_EQ(rig.panel.get("matte_scale").get_value(), 1.0);
    }
}

}  // namespace
