#include "shot/frames/FramePattern.h"

#include <gtest/gtest.h>

#include "shot/Errors.h"

using namespace veloxa;

TEST(FramePattern, WritesTheNumberAsTheNameSaysAndLeavesOtherNamesAlone) {
    const struct {
        const char* name;
        int frame;
        const char* file;
    } cases[] = {{"a.%04d.exr", 7, "a.0007.exr"},
                 {"a.%04d.exr", 123456, "a.123456.exr"},
                 {"a.%d.exr", 7, "a.7.exr"},
                 {"a.%3d.exr", 7, "a.  7.exr"},
                 {"a.%04d.exr", -5, "a.-005.exr"},
                 {"a.####.exr", 7, "a.0007.exr"},
                 {"a#.exr", 12, "a12.exr"},
                 {"%03d/a.##.exr", 4, "004/a.04.exr"},
                 {"100%%_%02d.exr", 4, "100%_04.exr"},
                 {"%04d", -2147483647 - 1, "-2147483648"}};
    for (const auto& c : cases) {
        const FramePattern pattern(c.name);
        EXPECT_TRUE(pattern.has_frame()) << c.name;
        EXPECT_EQ(pattern.at(c.frame), c.file) << c.name;
    }
    for (const char* name : {"still.exr", "50%.exr", "50%%.exr", "%s.exr", "%4x.exr", "%", ""}) {
        EXPECT_FALSE(FramePattern(name).has_frame()) << name;
        EXPECT_EQ(FramePattern(name).at(3), name);
    }
}

TEST(FrameRange, ReadsRanges) {
    const struct {
        const char* text;
        int first, count, last_rendered;
    } cases[] = {{"5", 5, 1, 5},
                 {"1-10", 1, 10, 10},
                 {"1-10x3", 1, 4, 10},
                 {"1-9x3", 1, 3, 7},
                 {"-5--1x2", -5, 3, -1},
                 {"-2-2", -2, 5, 2},
                 {"2147483646-2147483647", 2147483646, 2, 2147483647}};
    for (const auto& c : cases) {
        const FrameRange range = parse_frames(c.text);
        EXPECT_EQ(range.at(0), c.first) << c.text;
        EXPECT_EQ(range.count(), c.count) << c.text;
        EXPECT_EQ(range.at(range.count() - 1), c.last_rendered) << c.text;
    }
    for (const char* text : {"", "a", "1-", "-", "1-10x", "1-10x0", "1-10x-1", "10-1", "1-10 ", "1..10",
                             "1-2-3", "99999999999", "1-2147483647"}) {
        EXPECT_THROW(parse_frames(text), UsageError) << text;
    }
}
