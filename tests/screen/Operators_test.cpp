// What the plumbing of screen correction, clean-up and shadows has in common: the channels that are made and
// those that pass, for every screen colour, and the hash.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "screen/VlxCleanup.h"
#include "screen/VlxClearFrame.h"
#include "screen/VlxClearRegion.h"
#include "screen/VlxClearRegionCP.h"
#include "screen/VlxCombineShadow.h"
#include "screen/VlxComputeIsland.h"
#include "screen/VlxComputeShadow.h"
#include "screen/VlxSubRegion.h"
#include "support/RoleInputs.h"
#include "support/StageControls.h"

using namespace Zo::Image;
using test::fetch_row;
using test::kDepth;
using test::kRoles;

namespace {

using Pixel = test::RolePixel;

template <class T>
std::unique_ptr<VlxIop> make(const ControlBlock& controls) {
    return std::make_unique<T>(NodeContext{}, &controls);
}

// The controls that say whether inputs 1 to 3 are read, in operators that hash them.
constexpr int kFlags[] = {-1, 122, 191, 192};

struct Operator {
    std::unique_ptr<VlxIop> (*make)(const ControlBlock&);
    std::vector<Pixel> inputs;
    Pixel expected;  // alpha is 0 with a clean plate where the plate is optional
    std::set<int> hashed;

    bool optional(std::size_t n) const { return hashed.contains(kFlags[n]); }
};

const std::vector<Operator> kOperators{
    // (255 * 60 + 30) / 60 capped, (255 * 90 + 50) / 100, ...; 255 - (250 * 255 + 180) / 360.
    {make<VlxClearFrame>,
     {{60, 90, 100, 7}, {255, 255, 255, 1}, {60, 100, 200, 2}},
     {255, 230, 128, 77.41667f},
     {}},
    // Twice the excesses (200 * 58 - 90 * 60) / 140 and (200 * 62 - 90 * 80) / 120 is less than 90.
    {make<VlxSubRegion>, {{58, 62, 90, 30}}, {58, 62, 90, 0}, {75, 76, 77, 4, 5, 6, 7}},
    // Dominance over role 1: 103, against 193 - 10 - 90 of its own, against 200 - 10 - 80 of the plate.
    {make<VlxClearRegionCP>,
     {{62, 90, 193, 30}, {60, 80, 200, 0}},
     {62, 90, 193, 255},
     {75, 76, 77, 37, 38, 39, 122}},
    // Role 1 is below 80 + 5 and above the plate's 70 + 5.
    {make<VlxClearRegion>,
     {{63, 83, 200, 0}, {60, 70, 200, 9}, {0, 0, 0, 9}, {0, 0, 0, 9}},
     {63, 83, 200, 255},
     {75, 76, 77, 37, 38, 39, 122, 191, 192, 29, 30, 31, 32}},
    {make<VlxComputeIsland>, {{1, 2, 3, 30}}, {1, 2, 3, 30}, {232}},
    // Pushed by half of 100 - 10: colour times 210 / 255, matte + 155 * 45 / 255.
    {make<VlxCleanup>, {{60, 90, 120, 100}}, {49.41176f, 74.11765f, 98.82353f, 127.35294f}, {62, 63}},
    // Half as bright as the backing.
    {make<VlxComputeShadow>, {{100, 40, 30, 9}}, {100, 40, 30, 127.5f}, {75, 76, 77}},
    // A fifth of shadow on four fifths of matte.
    {make<VlxCombineShadow>,
     {{1, 2, 3, 9}, {0, 0, 0, 204}, {0, 0, 0, 51}},
     {2.6f, 5.2f, 19, 163.2f},
     {161, 162, 163, 65, 66, 67}},
};

// An operator with its controls and inputs; the colours of the inputs lie where the screen has its roles.
struct Wired {
    explicit Wired(const Operator& o, int color_index = 0, int clean_plate = 0) : op(o.make(controls.block)) {
        controls.block.set(120, color_index);
        controls.block.set(122, clean_plate);
        sources = test::connect_role_inputs(*op, o.inputs, color_index);
    }
    Row fetch(ChannelSet channels) { return fetch_row(*op, channels); }
    std::string name() const { return op->class_name(); }
    // Whether the hash changes from one setup to the next when `change` is made in between.
    bool hash_follows(const std::function<void()>& change) {
        op->setup();
        const Hash before = op->hash();
        change();
        op->setup();
        return op->hash() != before;
    }

    test::StageControls controls{{75, 60}, {76, 80},  {77, 200}, {4, 200},   {5, 0},  {62, 10},
                                 {63, 50}, {161, 10}, {162, 20}, {163, 100}, {232, 1}};
    test::RoleInputs sources;
    std::unique_ptr<VlxIop> op;
};

}  // namespace

TEST(ScreenOperators, MakeTheirChannelsForEveryScreen) {
    for (const Operator& o : kOperators) {
        for (const int plate : {0, 1}) {
            for (const int screen : {0, 1, 2}) {
                Wired wired(o, screen, plate);
                const Row row = wired.fetch(kMaskRgba + kDepth);
                Pixel expected = o.expected;
                if (plate != 0 && o.optional(1)) expected[3] = 0;
                for (std::size_t i = 0; i < 4; ++i) {
                    EXPECT_NEAR(row[kRoles[screen][i]][6], expected[i], 1e-4f) << wired.name() << screen << i;
                }
                EXPECT_EQ(row[kDepth][0], 77.0f) << wired.name();
            }
        }
    }
}

TEST(ScreenOperators, ClearRegionReadsTheMattesInUse) {
    Wired wired(kOperators[3], 0, 1);
    for (const auto& [flag, expected] : {std::pair{191, 255.0f}, std::pair{192, 0.0f}}) {
        wired.controls.block.set(flag, 1);
        wired.op->setup();
        EXPECT_EQ(wired.fetch(kMaskAlpha)[kAlpha][0], expected);
    }
}

TEST(ScreenOperators, PassInputZeroWithoutAlpha) {
    for (const Operator& o : kOperators) {
        Wired wired(o, 0, 1);
        const bool makes_colour = wired.name() == "VlxCleanup";
        const Row row = wired.fetch(kMaskRgb + kDepth);
        for (const std::size_t i : {0U, 1U, 2U}) {
            EXPECT_EQ(row[kRoles[0][i]][6] == o.inputs[0][i], !makes_colour) << wired.name();
        }
        for (std::size_t n = 1; n < wired.sources.size(); ++n) EXPECT_EQ(wired.sources[n]->rows(), 0);
    }
}

TEST(ScreenOperators, HashListedControlsAndInputsInUse) {
    for (const Operator& o : kOperators) {
        Wired wired(o);
        for (int i = 0; i < ControlBlock::kCount; ++i) {
            std::int32_t& value = wired.controls.values[static_cast<std::size_t>(i)];
            EXPECT_EQ(wired.hash_follows([&] { ++value; }), o.hashed.contains(i)) << wired.name() << ' ' << i;
            --value;
        }
        for (const int in_use : {0, 1}) {
            for (const int flag : {122, 191, 192}) wired.controls.block.set(flag, in_use);
            for (std::size_t n = 0; n < o.inputs.size(); ++n) {
                EXPECT_EQ(wired.hash_follows([&] { wired.sources[n]->invalidate(); }),
                          in_use || !o.optional(n))
                    << wired.name() << ' ' << n;
            }
        }
    }
}

TEST(ScreenOperators, TellTheirNames) {
    const char* const names[] = {"VlxClearFrame",    "VlxSubRegion", "VlxClearRegionCP", "VlxClearRegion",
                                 "VlxComputeIsland", "VlxCleanup",   "VlxComputeShadow", "VlxCombineShadow"};
    for (std::size_t i = 0; i < kOperators.size(); ++i) EXPECT_EQ(Wired(kOperators[i]).name(), names[i]);
    EXPECT_STREQ(Wired(kOperators[0]).op->help_text(), "Veloxa Internal Operator.");
    for (const std::size_t crude : {1, 2}) {
        EXPECT_STREQ(Wired(kOperators[crude]).op->help_text(),
                     "Calculates a \"crude\" matte that is used in the creation of the Clear Region. \n"
                     "We only calculate a Crude Matte is we have a Clean Plate");
    }
}
