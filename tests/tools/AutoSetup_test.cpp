// The automatic set-up on procedural plates, against the defaults and what is known to be true.
#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numeric>

#include "ZoImage/Script.h"
#include "plates/Set.h"
#include "shot/node/ImageSource.h"
#include "support/Loops.h"
#include "tools/ToolRig.h"

using namespace test;

namespace {

using veloxa::Image;
using Change = std::function<void(Image&)>;

constexpr int kWidth = 480;
constexpr int kHeight = 270;
// Left of the figure nothing but backing, but for the stand that the garbage matte is for.
constexpr Box kLeft{40, 120, 110, 260};

// Keys a plate whose foreground was changed by `change`, by colour difference unless that is let go.
struct Rig : ToolRig {
    explicit Rig(plate::Screen screen, std::uint64_t seed, const Change& change = {})
        : set_of_plates(plate::render_set({kWidth, kHeight, seed, screen}, 0, 2)) {
        auto picture = std::make_shared<Image>(set_of_plates[plate::kForeground]);
        if (change) change(*picture);
        fg.set(picture, Hash{});
        node.set_input(0, &fg);
        set("screen_color", screen == plate::Screen::kBlue ? "0.09,0.22,0.6" : "0.14,0.6,0.24");
        hold("unmix_method");
    }
    std::vector<float> alpha() { return render(node, 2).planes[kAlpha]; }
    // The sum of the alpha's differences from the true one.
    double error() {
        const std::vector<float> now = alpha();
        return std::transform_reduce(now.begin(), now.end(), set_of_plates[plate::kAlphaTrue].line(kAlpha, 0),
                                     0.0, std::plus<>(), [](float a, float b) { return std::fabs(a - b); });
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

// How many pixels of the box there are of which `counts` holds, given their place in a plane.
template <class Counts>
int count(const Box& box, const Counts& counts) {
    int sum = 0;
    each(box.width(), box.height(), [&](int x, int y) {
        sum += counts(static_cast<std::size_t>((box.y + y) * kWidth + box.x + x)) ? 1 : 0;
    });
    return sum;
}

Change filled(const Box& box, const std::array<float, 3>& colour) {
    return [=](Image& fg) {
        for (int y = box.y; y < box.t; ++y) {
            for (const Channel c : kMaskRgb)
                std::fill_n(fg.line(c, y) + box.x, box.width(), colour[c - kRed]);
        }
    };
}

const Change kAllGrey = filled({0, 0, kWidth, kHeight}, {0.4f, 0.4f, 0.4f});

TEST(AutoSetup, ComesNearerToTheTruthThanTheDefaults) {
    for (const plate::Screen screen : {plate::Screen::kGreen, plate::Screen::kBlue}) {
        for (const std::uint64_t seed : {1, 5, 9}) {
            Rig rig(screen, seed);
            const double before = rig.error();
            rig.use("set_up");
            const double difference = rig.error();
            EXPECT_LT(difference, before);
            rig.hold("unmix_method", false);
            rig.use("set_up");
            EXPECT_LT(rig.error(), 0.9 * difference)
                << "seed " << seed << (screen == plate::Screen::kBlue ? " blue" : "");
        }
    }
}

TEST(AutoSetup, ChoosesTheMethod) {
    const struct {
        std::string sets;  // and held: NAME=VALUE
        bool unmixes;
        const char* told;
        Change change = {};
    } cases[] = {
        {"", true, "green screen: "},
        {"unmix_veil=0.3", true, "green screen: "},
        {"merge=add matte_scale=linear spill_suppression_enable=1", true, "green screen: "},
        {"merge=multiply", false, "colour difference, as merge is set"},
        {"film_strength=1", false, "colour difference, as film_strength is set"},
        {"spill_suppression_enable=0", false, "colour difference, as spill_suppression is set"},
        {"film_enable=1", false, "colour difference, as film correction is on"},
        {"unmix_method=unmix darks=3", true, "unmix_method stays at unmix, as set"},
        {"", false, "colour difference, as unmixing needs more of the backing", kAllGrey},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sets);
        Rig rig(plate::Screen::kGreen, 1, c.change);
        rig.hold("unmix_method", false);
        rig.set_and_hold(c.sets);
        const KnobValues before(rig.panel);
        rig.use("set_up");
        EXPECT_EQ(rig.text("unmix_method") == "unmix", c.unmixes);
        EXPECT_THAT(rig.told(), testing::HasSubstr(std::string("\n") + c.told));
        const std::size_t turned = before.changed().size();
        EXPECT_TRUE(!c.unmixes || turned <= 1) << "unmixing has nothing else to turn";
    }
}

// A patch of skin on the jacket, and one of grey cloth that the screen shines on.
TEST(AutoSetup, TakesSpillOutOfClothAndLeavesSkin) {
    Rig rig(plate::Screen::kGreen, 1, [&](Image& fg) {
        filled({200, 10, 240, 60}, {0.764f, 0.574f, 0.437f})(fg);
        filled({250, 10, 270, 60}, {0.40f, 0.52f, 0.42f})(fg);
    });
    rig.use("set_up");
    const Picture out = render(rig.node, 2);
    EXPECT_NEAR(out.at(kRed, 220, 35), 0.764f, 0.03f) << rig.told();
    EXPECT_NEAR(out.at(kGreen, 220, 35), 0.574f, 0.03f);
    EXPECT_NEAR(out.at(kBlue, 220, 35), 0.437f, 0.03f);
    EXPECT_LT(out.at(kGreen, 260, 35), 0.46f);
    // What a script tells of spill is left alone.
    rig.apply("spill_strength 41");
    rig.set("spill_warm", "50");
    rig.use("set_up");
    EXPECT_EQ(rig.text("spill_warm"), "50");
    EXPECT_THAT(rig.told(), testing::HasSubstr("as the script sets spill_strength"));
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
            return count({kLeft.x + 8, kLeft.y + 8, kLeft.r - 8, kLeft.t - 8},
                         [alpha = rig.alpha()](std::size_t at) { return alpha[at] > 0.0f; });
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
    const struct {
        std::string script, sets;  // NAME VALUE; NAME=VALUE
        const char* stay;          // noted
        const char* moved;         // all the same
        const char* kept = "";     // as a consequence
    } cases[] = {
        {"", "brights=150", "brights", "merge matte_scale cleanup"},
        {"", "brights=100", "brights", "merge screen_tolerance"},
        {"", "merge=multiply", "merge", "matte_scale brights"},
        {"merge multiply\nbrights 90", "matte_scale=knee", "merge brights matte_scale", "cleanup"},
        {"darks 1", "", "brights", "merge"},
        {"", "cleanup_enable=0", "cleanup", "brights"},
        {"", "cleanup_cleanup=30", "cleanup_cleanup", "cleanup"},
        {"", "cleanup_cleanup=400", "cleanup_cleanup", "brights", "cleanup"},
        {"", "screen_tolerance=0.51,0.51,0.52", "screen_tolerance", "screen_brights_red_larger"},
        {"",
         "screen_tolerance=0.51,0.51,0.52 screen_darks_red_larger=0 screen_darks_red_smaller=0 "
         "screen_brights_red_larger=100 screen_brights_red_smaller=100",
         "screen_tolerance screen_darks_red_larger screen_brights_red_smaller", "brights"},
        {"us_add_overlay {0.14 0.58 0.25 0}", "", "us_add_overlay", "screen_tolerance"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script + c.sets);
        Rig rig(plate::Screen::kGreen, 1, make_pale);
        if (!c.script.empty()) rig.apply(c.script);
        rig.set_and_hold(c.sets);
        const KnobValues before(rig.panel);
        rig.use("set_up");
        std::vector<std::string> moved;
        for (const Knob* knob : before.changed()) moved.push_back(knob->name());
        EXPECT_THAT(moved, testing::IsSupersetOf(words(c.moved)));
        for (const std::string& name : words(std::string(c.stay) + ' ' + c.kept))
            EXPECT_THAT(moved, testing::Not(testing::Contains(name)));
        for (const std::string& name : words(c.stay))
            EXPECT_THAT(rig.told(), testing::HasSubstr('\n' + name + " stays"));
    }
}

// A script has the knobs that strokes found and the means of some, not their pixels.
TEST(AutoSetup, UndoesNoStrokeOfAScript) {
    Rig made(plate::Screen::kBlue, 1);
    made.use("removeoverlay", {420, 187, 450, 217});
    made.use("addoverlay", {15, 230, 45, 260});  // whose pixels are counted below
    const std::string script = write_script(made.panel);
    Rig rig(plate::Screen::kBlue, 1);
    rig.apply(script.substr(script.find('\n'), script.rfind('}') - script.find('\n')));
    const std::vector<float> before = rig.alpha();
    rig.use("set_up");
    const std::vector<float> after = rig.alpha();
    EXPECT_EQ(
        count({15, 230, 45, 260}, [&](std::size_t at) { return before[at] <= 0.0f && after[at] > 0.0f; }), 0);
}

TEST(AutoSetup, FindsTheScreenWhereNoneIsChosen) {
    Rig rig(plate::Screen::kBlue, 1);
    rig.set("screen_color", "0,0,0");
    rig.hold("screen_color");  // meant so
    rig.use("set_up");
    EXPECT_EQ(rig.text("screen_color"), "0 0 0");
    EXPECT_EQ(rig.told().find("find_screen"), std::string::npos);
    rig.hold("screen_color", false);
    rig.use("set_up");
    EXPECT_NEAR(rig.panel.get("screen_color").get_value(2), 0.6, 0.1) << rig.told();
    EXPECT_THAT(words(rig.turned()), testing::Contains("merge"));
    Rig grey(plate::Screen::kBlue, 1, kAllGrey);
    grey.set("screen_color", "0,0,0");
    grey.use("set_up");
    EXPECT_NE(grey.report().failure, "");
    EXPECT_EQ(grey.turned(), "");
}

TEST(AutoSetup, SaysThatThereIsNoForeground) {
    ToolRig rig;
    rig.set("screen_color", "0.1,0.6,0.2");
    rig.use("set_up");
    ASSERT_FALSE(rig.reports.empty());
    EXPECT_EQ(rig.reports.back().failure, "there is no foreground to look at");
}

TEST(AutoSetup, SurvivesPlatesWithNothingToGoBy) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    // Backing alone, none at all, and a stripe of what is no number.
    for (const Change& change : {filled({0, 0, kWidth, kHeight}, {0.15f, 0.6f, 0.15f}), kAllGrey,
                                 filled({0, 100, kWidth, 140}, {kNan, kNan, kNan})}) {
        Rig rig(plate::Screen::kGreen, 1, change);
        rig.hold("unmix_method", false);
        rig.use("set_up");  // by whichever method
        rig.set("unmix_method", "colour difference");
        rig.hold("unmix_method");
        rig.use("set_up");
        EXPECT_GE(rig.panel.get("brights").get_value(), 50.0);
        EXPECT_EQ(rig.panel.get("matte_scale").get_value(), 1.0);
    }
}

}  // namespace
