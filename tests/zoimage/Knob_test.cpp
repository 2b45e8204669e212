#include "ZoImage/Knob.h"

#include <gmock/gmock.h>

#include <cmath>

#include "support/KnobOp.h"

using namespace Zo::Image;
using test::KnobOp;

TEST(Knob, WordsOfSavedText) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"", {}},
        {" {} \t{ }", {}},
        {"{0.1 2}\r\n-3", {"0.1", "2", "-3"}},
        {"{ {a b} {c} }", {"a", "b", "c"}},
        {"a\"b c\"d", {"a", "b c", "d"}},
        {"\"open end", {"open end"}},
    };
    for (const auto& [text, expected] : cases) {
        std::vector<std::string> words{"left over"};
        Knob::Script_List(text, words);
        EXPECT_EQ(words, expected) << text;
    }
}

TEST(Knob, TheWholeWordMustBeANumber) {
    constexpr double kNone = 7.0;
    const std::pair<const char*, double> cases[] = {
        {"1.5", 1.5},   {"+2", 2.0},    {"-.5", -0.5},  {"1e3", 1000.0}, {"inf", INFINITY}, {"", kNone},
        {"x", kNone},   {"1x", kNone},  {"1,5", kNone}, {" 1", kNone},   {"1 ", kNone},     {"+", kNone},
        {"+-1", kNone}, {"++1", kNone}, {"--1", kNone}, {"0x10", kNone}};
    for (const auto& [word, expected] : cases) {
        double value = kNone;
        EXPECT_EQ(Knob::to_double(word, value), expected != kNone) << word;
        EXPECT_EQ(value, expected) << word;
    }
}

TEST(KnobPanel, HoldsTheKnobsInOrderWithTheirTabs) {
    KnobOp op;
    KnobPanel panel(op);
    std::string list;
    for (const auto& knob : panel.knobs()) list += knob->name() + "@" + knob->tab() + " ";
    EXPECT_EQ(list,
              "on@KnobOp mode@KnobOp invert@KnobOp More@More more_on@More gain@More reset@More tint@More "
              "fill@More reset@More bar@bar pick@bar wipe@bar @bar size@ list@ ");
    EXPECT_EQ(panel.get("on").tooltip(), "Whether it is on.");
    EXPECT_EQ(panel.get("gain").range()->high, 10.0);
    EXPECT_FALSE(panel.get("tint").range().has_value());
    EXPECT_EQ(panel.get("fill").default_value(3), 1.0);
    EXPECT_EQ(panel.find(""), nullptr);
    // A later pass finds the same knobs.
    const std::vector<Knob*> made = op.found;
    ASSERT_NE(made[6], made[9]);
    panel.refresh();
    EXPECT_EQ(op.found, made);
    EXPECT_EQ(panel.knobs().size(), made.size());
}

TEST(KnobPanel, SetsValuesFromText) {
    KnobOp op;
    KnobPanel panel(op);
    const Hash before = op.hash();
    const std::pair<const char*, const char*> settings[] = {
        {"more_on", "true"},         {"mode", "soft light"}, {"gain", " 1e3 "}, {"tint", "1,2 ,3"},
        {"fill", "{0.1 .2\t-3 +4}"}, {"size", "0.1,1e300"},  {"list", "{a b}"}};
    for (const auto& [name, text] : settings) panel.set_from_text(name, text);
    EXPECT_TRUE(op.on);
    EXPECT_EQ(op.mode, 1);
    EXPECT_EQ(op.gain, 1000.0f);
    EXPECT_EQ(op.tint, (std::array<float, 3>{1.0f, 2.0f, 3.0f}));
    EXPECT_EQ(op.fill, (std::array<float, 4>{0.1f, 0.2f, -3.0f, 4.0f}));
    EXPECT_EQ(op.size, (std::array<double, 2>{0.1, 1e300}));
    EXPECT_EQ(op.told, (std::vector<std::string>{"on", "mode", "gain", "tint", "fill", "size", "list"}));
    EXPECT_NE(op.hash(), before);
    panel.set_from_text("mode", "2");
    EXPECT_EQ(op.mode, 2);
    panel.set_from_text("gain", "1e-60");
    EXPECT_EQ(op.gain, 0.0f);
    // Above the middle between two floats by less than a double can tell.
    panel.set_from_text("gain", "1.00000005960464477540");
    EXPECT_EQ(op.gain, 1.00000011920928955f);
}

TEST(KnobPanel, RefusesWhatAKnobDoesNotTake) {
    const std::array<const char*, 3> cases[] = {
        {"tint", "0.1,0.2", "knob 'tint' takes 3 numbers: red, green, blue; got 2"},
        {"tint", "1", "knob 'tint' takes 3 numbers: red, green, blue; got 1"},
        {"tint", "1,,3", "knob 'tint' takes 3 numbers: red, green, blue; a number is missing"},
        {"tint", "1,2,3,", "knob 'tint' takes 3 numbers: red, green, blue; a number is missing"},
        {"fill", "1 2 3", "knob 'fill' takes 4 numbers: red, green, blue, alpha; got 3"},
        {"size", "{2}", "knob 'size' takes 2 numbers: width, height; got 1"},
        {"size", "", "knob 'size' takes 2 numbers: width, height; got none"},
        {"gain", "much", "knob 'gain' takes a number; 'much' is not a number"},
        {"gain", "{1", "knob 'gain' takes a number; '{1' is not a number"},
        {"gain", "nan", "knob 'gain' takes a number; 'nan' is not finite"},
        {"gain", "1e39", "knob 'gain' takes a number; '1e39' is too large"},
        {"on", "yes", "knob 'on' takes true or false; got 'yes'"},
        {"mode", "Hard", "knob 'mode' takes one of off, soft light, hard; got 'Hard'; did you mean 'hard'?"},
        {"mode", "3", "knob 'mode' takes one of off, soft light, hard; got '3'"},
        {"reset", "1", "knob 'reset' takes no value: it is a button"},
        {"pick", "1", "knob 'pick' takes no value: it is a tool button"},
        {"list", "a bad one", "knob 'list' does not take 'a bad one'"},
        {"gian", "1", "no knob named 'gian'; did you mean 'gain'?"},
        {"x\x1b[2J", "1", "no knob named 'x?[2J'"},
    };
    KnobOp op;
    KnobPanel panel(op);
    for (const auto& [name, text, message] : cases) {
        const auto set = [&, n = name, t = text] { panel.set_from_text(n, t); };
        EXPECT_THAT(set, testing::ThrowsMessage<KnobError>(message));
    }
    EXPECT_FALSE(panel.get("gain").set_value(NAN));
    EXPECT_FALSE(panel.get("gain").set_value(1e39));
    EXPECT_FALSE(panel.get("mode").set_value(3.0));
    EXPECT_TRUE(op.told.empty());
    for (const auto& knob : panel.knobs()) EXPECT_FALSE(knob->differs_from_default()) << knob->name();
}

TEST(KnobPanel, ButtonsAndTools) {
    KnobOp op;
    KnobPanel panel(op);
    for (const bool expected : {true, false, true}) {
        panel.press(panel.get("invert"));
        EXPECT_EQ(op.on, expected);
    }
    op.told.clear();
    panel.press(panel.get("reset"));
    EXPECT_EQ(op.told, std::vector<std::string>{"reset"});
    panel.press(panel.get("wipe"));
    EXPECT_EQ(op.tool, 1);
    EXPECT_FALSE(panel.get("pick").active());
    EXPECT_TRUE(panel.get("pick").set_value(3.5, 7));
    EXPECT_FALSE(panel.get("pick").set_value(3.5, 8));
    EXPECT_EQ(panel.get("pick").get_value(7), 3.5);
    EXPECT_THROW(panel.press(panel.get("gain")), KnobError);
}

TEST(KnobPanel, AStrokeIsOfTheAreasUntilItsBoxIsSet) {
    KnobOp op;
    KnobPanel panel(op);
    Knob& pick = panel.get("pick");
    const std::vector<Box> areas{{1, 2, 3, 4}, {2, 8, 9, 9}};
    pick.stroke({areas[0], {5, 5, 5, 7}, areas[1]});
    EXPECT_EQ(pick.stroke(), areas);
    for (const auto& [i, edge] : {std::pair(4, 1.0), {5, 2.0}, {6, 9.0}, {7, 9.0}}) {
        EXPECT_EQ(pick.get_value(i), edge) << i;
    }
    pick.set_value(0.5, 3);  // a colour's
    EXPECT_EQ(pick.stroke(), areas);
    pick.set_value(7.25, 6);
    EXPECT_EQ(pick.stroke(), (std::vector<Box>{{1, 2, 8, 9}}));
    pick.stroke(areas);
    pick.stroke({areas[1]});
    EXPECT_EQ(pick.stroke(), (std::vector<Box>{areas[1]}));
    panel.get("gain").stroke(areas);
    EXPECT_TRUE(panel.get("gain").stroke().empty());
}

TEST(KnobPanel, UndoGoesBackStepByStep) {
    KnobOp op;
    KnobPanel panel(op);
    Knob& gain = panel.get("gain");
    gain.new_undo();
    gain.set_value(2.0);
    gain.new_undo("second");
    gain.set_value(3.0);
    for (const auto& [name, value] : {std::pair("second", 2.0f), std::pair("gain", 1.0f)}) {
        EXPECT_EQ(panel.undo_name(), name);
        EXPECT_TRUE(panel.undo());
        EXPECT_EQ(op.gain, value);
    }
    EXPECT_FALSE(panel.undo());
}
