#include "ZoImage/Script.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <random>

#include "support/KnobOp.h"

using namespace Zo::Image;
using test::KnobOp;

TEST(Script, WritesWhatDiffersInPanelOrder) {
    KnobOp op;
    KnobPanel panel(op);
    EXPECT_EQ(write_script(panel), "KnobOp {\n}\n");
    panel.set_from_text("list", "7");
    panel.set_from_text("size", "2,21");
    panel.set_from_text("tint", "0.1,0.45,1e-20");
    panel.set_from_text("more_on", "1");
    panel.set_from_text("mode", "soft light");
    EXPECT_EQ(write_script(panel),
              "KnobOp {\n    on true\n    mode \"soft light\"\n    tint {0.1 0.45 1e-20}\n"
              "    size {2 21}\n    list {7 }\n}\n");
}

TEST(Script, ReadsBackToTheSameBits) {
    std::mt19937 random(5);
    for (int round = 0; round < 2000; ++round) {
        KnobOp op;
        KnobPanel panel(op);
        for (float& v : op.fill) {
            do v = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
            while (!std::isfinite(v));
        }
        op.gain = round == 0 ? -0.0f : op.fill[0] * 1e-3f;
        op.size[0] = std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 1800) - 900);
        op.mode = static_cast<std::int32_t>(random() % 3);
        KnobOp copy;
        KnobPanel copy_panel(copy);
        apply_script(copy_panel, read_script(write_script(panel), "s").at(0), "s");
        const auto bits = [](const KnobOp& of) {
            return std::bit_cast<std::array<std::uint32_t, 5>>(
                std::array{of.fill[0], of.fill[1], of.fill[2], of.fill[3], of.gain});
        };
        EXPECT_EQ(bits(copy), bits(op));
        EXPECT_EQ(copy.size, op.size);
        EXPECT_EQ(copy.mode, op.mode);
    }
}

TEST(Script, ReadsGroupsCommentsAndForeignLineEnds) {
    std::string read;
    for (const ScriptGroup& group :
         read_script("\xef\xbb\xbf# top\r\n\r\nOther { } # empty\r\nKnobOp{\r\n\ttint {1 2 3}# c\r\n"
                     " list { {1 2} {3} }\r\n mode \"a # b\"\r\n}",
                     "s")) {
        read += std::to_string(group.line) + group.class_name + '\n';
        for (const auto& [name, text, line] : group.entries)
            read += std::to_string(line) + name + text + '\n';
    }
    EXPECT_EQ(read, "3Other\n4KnobOp\n5tint{1 2 3}\n6list{ {1 2} {3} }\n7mode\"a # b\"\n");
}

TEST(Script, SaysWhereAndWhatWasExpected) {
    const std::pair<const char*, const char*> cases[] = {
        {"KnobOp {\ngain 2\n", "f:2: '}' is expected: the group 'KnobOp' of line 1 is not closed"},
        {"}\n", "f:1: a group 'CLASS {' is expected; got '}'"},
        {"KnobOp\n{\n}\n", "f:1: '{' is expected after 'KnobOp'"},
        {"KnobOp { gain 2 }\n", "f:1: the knobs of a group stand on lines of their own"},
        {"KnobOp {\n gain # 2\n}\n", "f:2: a value is expected after 'gain'"},
        {"KnobOp {\n gain=2\n}\n", "f:2: 'name value' or '}' is expected; got 'gain=2'"},
        {"KnobOp {\n tint 1 2 3\n}\n", "f:2: several values must stand in braces"},
        {"KnobOp {\n tint {1 2 3\n}\n", "f:2: '}' is expected at the end of the value"},
        {"KnobOp {\n tint {1 2 3} 4\n}\n", "f:2: nothing may follow the closing '}'"},
        {"KnobOp {\n mode \"off\n}\n", "f:2: '\"' is expected at the end of the value"},
        {"KnobOp {\n gain 2\n gain 3\n}\n", "f:3: 'gain' is given a second time; line 2 has it already"},
        {"KnobOp {\n gain 2 }\n",
         "f:2: a value is one word, or several in braces; '}' of a group stands on a line of its own"},
        {"Grade {\n}\n", "f:1: a group 'KnobOp' is expected; got 'Grade'"},
        {"KnobOp {\n gain 2\n\n tnt {1 2 3}\n}\n", "f:4: no knob named 'tnt'; did you mean 'tint'?"},
        {"KnobOp {\n gain 2\n tint {1 2}\n}\n", "f:3: knob 'tint' takes 3 numbers: red, green, blue; got 2"},
        {"KnobOp {\n gain 2\n list {bad}\n}\n", "f:3: knob 'list' does not take '{bad}'"},
        {"KnobOp {\n on 1\n more_on 0\n}\n", "f:3: 'more_on' sets the same knob as 'on' on line 2"},
    };
    KnobOp op;
    KnobPanel panel(op);
    for (const auto& [text, message] : cases) {
        const auto apply = [&, t = text] { apply_script(panel, read_script(t, "f").at(0), "f"); };
        EXPECT_THAT(apply, testing::ThrowsMessage<ScriptError>(message)) << text;
    }
    EXPECT_EQ(op.gain, 1.0f);  // the good lines beside the bad ones
    EXPECT_TRUE(op.told.empty());
}

// Whatever the bytes: a clean refusal or groups, never anything else.
TEST(Script, TakesAnyBytes) {
    const std::string pieces[] = {"KnobOp", " {", "\n",  "}",    "gain", " ", "{",
                                  "\"",     "#",  "1e9", "\r\n", "list", ","};
    std::mt19937 random(11);
    int read = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        for (std::size_t n = random() % 24; n > 0; --n) {
            const auto pick = random() % 16;
            text += pick < 13 ? pieces[pick] : std::string(1, static_cast<char>(random() & 0xff));
        }
        KnobOp op;
        KnobPanel panel(op);
        try {
            for (const ScriptGroup& group : read_script(text, "f")) apply_script(panel, group, "f");
            ++read;
        } catch (const ScriptError& error) {
            EXPECT_GE(error.line(), 1);
        }
    }
    EXPECT_GT(read, 100);
    EXPECT_LT(read, 19000);
}
