#include "controls/ControlBlock.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <numeric>

#include "controls/Controls.h"

namespace {

using Values = std::array<std::int32_t, ControlBlock::kCount>;

TEST(ControlBlock, StoresTheDefaultsWhenAskedTo) {
    Values values;
    std::iota(values.begin(), values.end(), 1000);
    const Values before = values;
    EXPECT_EQ(ControlBlock(values.data(), 0).get(80), -1080);
    EXPECT_EQ(values, before);
    const ControlBlock block(values.data(), 1);  // of which the listing shows every one
    EXPECT_EQ(values[5], -5);
    EXPECT_EQ(block.get(controls::kFilmDarks), 5);
    EXPECT_EQ(block.get(controls::kBackingColor), (ControlTriple{-1, -1, -1}));
    EXPECT_EQ(ControlBlock::category(49), 16);
    EXPECT_EQ(block.overlayShrinkV, 2);
    EXPECT_EQ(block.subjectShrinkV, 2);
}

TEST(ControlBlock, SettersTruncateAndNegate) {
    Values values;
    ControlBlock block(values.data(), 1);
    constexpr std::int32_t kNone = std::numeric_limits<std::int32_t>::min();
    const struct {
        int index;
        double given;
        std::int32_t stored, read;
    } cases[] = {{79, 2.9, 2, 2},          {79, -2.9, -2, -2},
                 {80, 7.0, -7, 7},         {80, -7.9, 7, -7},
                 {79, 3e9, kNone, kNone},  {79, std::numeric_limits<double>::quiet_NaN(), kNone, kNone},
                 {5, -1e300, kNone, kNone}};
    for (const auto& c : cases) {
        block.set(c.index, c.given);
        EXPECT_EQ(values[static_cast<std::size_t>(c.index)], c.stored) << c.index << ' ' << c.given;
        EXPECT_EQ(block.get(c.index), c.read);
        block.set(c.index, static_cast<float>(c.given));
        EXPECT_EQ(block.get(c.index), c.read);
    }
}

TEST(ControlBlock, MarkingNotesTheCategoryOfAChange) {
    Values values;
    ControlBlock block(values.data(), 1);
    block.mark(49, 5);
    EXPECT_EQ(block.dirty(), 16);
    block.mark(49, 5.7);
    EXPECT_EQ(block.dirty(), 100);
    block.mark(80, 0);  // compared by its natural value
    EXPECT_EQ(block.dirty(), 100);
    block.mark(controls::kScreenTolerance, 5, 5, 11);
    EXPECT_EQ(block.dirty(), 8);
    block.mark(controls::kScreenTolerance, 5.1, 5.2, 11.9);
    EXPECT_EQ(block.dirty(), 100);
    block.mark(16, 9);
    EXPECT_EQ(block.dirty(), 100);  // no stage depends on it
    block.set_dirty(21);
    block.set(79, 1);
    EXPECT_EQ(block.dirty(), 21);
    block.mark_clean();
    EXPECT_EQ(block.dirty(), 100);
}

TEST(ControlBlock, GroupsAndResets) {
    Values values;
    ControlBlock block(values.data(), 1);
    const ControlGroup film{13, 12, 11};
    EXPECT_EQ(block.get(film), (ControlTriple{50, 0, 0}));
    block.set(film, 1, 2, 3);
    EXPECT_EQ(values[13], 1);
    EXPECT_EQ(values[11], 3);
    block.reset(film);
    EXPECT_EQ(block.get(film), (ControlTriple{50, 0, 0}));
    block.set(5, 40);
    block.reset(5);
    EXPECT_EQ(values[5], -5);
}

}  // namespace
