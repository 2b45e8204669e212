// What all operators' plumbing has in common, on flat images: the channels that are made and those that pass,
// for every screen colour, and what each hash is made of.
#include <gtest/gtest.h>

#include <optional>
#include <set>

#include "screen/VlxBlurCU.h"
#include "screen/VlxCleanup.h"
#include "screen/VlxClearFrame.h"
#include "screen/VlxClearRegion.h"
#include "screen/VlxClearRegionCP.h"
#include "screen/VlxCombineShadow.h"
#include "screen/VlxComputeIsland.h"
#include "screen/VlxComputeShadow.h"
#include "screen/VlxShadowBlur.h"
#include "screen/VlxShrinkCU.h"
#include "screen/VlxShrinkS.h"
#include "screen/VlxSmartInterpol.h"
#include "screen/VlxSubRegion.h"
#include "stages/VlxColorCorrection.h"
#include "stages/VlxComputeMatte.h"
#include "stages/VlxComputePFG.h"
#include "stages/VlxFilmCorrection.h"
#include "stages/VlxMatteCorrect.h"
#include "stages/VlxNormalize.h"
#include "stages/VlxOutputMatte.h"
#include "stages/VlxSpillSuppression.h"
#include "support/RoleInputs.h"
#include "support/StageControls.h"
#include "unmix/VlxUnmixMatte.h"

using namespace Zo::Image;
using namespace test;

namespace {

using Settings = std::vector<std::pair<int, int>>;

struct Case {
    const char* name;
    std::unique_ptr<Iop> (*make)(const ControlBlock&);
    Settings settings;
    std::vector<RolePixel> inputs;
    ChannelSet made;
    RolePixel expected;                            // in role order
    std::set<int> hashed;                          // 250 is overlayShrinkV, 251 subjectShrinkV
    std::optional<RolePixel> expected_with_plate;  // while "CleanPlate" is set, where that matters

    // Inputs 1 to 3 are read while a control says so, where that is hashed.
    bool optional(std::size_t n) const { return hashed.contains(std::array{-1, 122, 191, 192}[n]); }
};

template <class T, auto... kMore>
std::unique_ptr<Iop> make(const ControlBlock& controls) {
    if constexpr (std::is_base_of_v<VlxIop, T>) {
        return std::make_unique<T>(NodeContext{}, &controls, kMore...);
    } else {
        return std::make_unique<T>(NodeContext{});
    }
}

constexpr RolePixel kForeground{60, 90, 120, 30};

Case row(const char* name, std::unique_ptr<Iop> (*make)(const ControlBlock&), Settings settings,
         std::vector<RolePixel> inputs, ChannelSet made, RolePixel expected, std::set<int> hashed,
         std::optional<RolePixel> expected_with_plate = {}) {
    return {name, make,     std::move(settings), std::move(inputs),
            made, expected, std::move(hashed),   expected_with_plate};
}

const std::vector<Case> kCases{
    // (59.5 / 2 / 60.5 + 0.5) 255 and so on.
    row("VlxNormalize", make<VlxNormalize>, {}, {kForeground}, kMaskAll,
        {252.89256f, 253.59116f, 253.94191f, 250.81967f}, {}),
    // m1 = (200 * 90 - 120 * 20) / 180; 255 (120 - m1) / 200. Plate: (36 * 90 - 120 * 24) / (36 - 24).
    row("VlxComputeMatte", make<VlxComputeMatte>, {{75, 10}, {76, 20}, {77, 200}},
        {kForeground, {12, 24, 36, 5}}, kMaskAlpha, {60, 90, 120, 42.5f}, {75, 76, 77, 79, 80, 81, 82, 122},
        RolePixel{60, 90, 120, 637.5f}),
    // Two fifths of the veils 10, 10, 50; of 12, 12, 9.
    row("VlxComputePFG", make<VlxComputePFG>,
        {{75, 10}, {76, 20}, {77, 200}, {173, 100}, {174, 50}, {175, 25}},
        {kForeground, {12, 24, 36, 5}, {1, 2, 3, 102}, {4, 5, 6, 0}}, kMaskRgba, {56, 86, 100, 153},
        {75, 76, 77, 122, 173, 174, 175}, RolePixel{55.2f, 85.2f, 116.4f, 153}),
    // Of the primary 31 levels are spill, and no ambiance takes their place: 120 * 90 / (90 + 31).
    row("VlxSpillSuppression", make<VlxSpillSuppression>,
        {{75, 0}, {76, 0}, {77, 255}, {115, 0}, {116, 0}, {117, 0}, {107, 0}, {106, 0}}, {kForeground, {}},
        kMaskRgb, {60, 90, 89.25620f, 30}, {75, 76, 77, 105, 106, 107, 110, 111, 115, 116, 117, 118}),
    // Opaque: a doubled slope, from half the range on white.
    row("VlxColorCorrection", make<VlxColorCorrection>, {{203, 200}}, {{60, 90, 120, 255}}, kMaskRgb,
        {120, 90, 120, 255},
        {200, 201, 202, 203, 204, 205, 206, 207, 208, 209, 210, 211, 212, 213, 214, 234, 235, 236}),
    row("VlxUnmixMatte", make<VlxUnmixMatte>, {}, {{0.25f, 0.5f, 1, 0.75f}}, kMaskRgba,
        {63.75f, 127.5f, 170, 63.75f}, {}),
    row("VlxOutputMatte", make<VlxOutputMatte>, {}, {kForeground}, kMaskAlpha, {60, 90, 120, 225}, {}),
    // Extremes that lie on the pixel correct nothing.
    row("VlxFilmCorrection", make<VlxFilmCorrection>, {{11, 50}, {10, 100}}, {kForeground, {}}, kMaskRgb,
        {60, 90, 120, 30}, {10, 11, 12, 13}),
    // A flat stretch beyond the limit becomes the limit.
    row("VlxMatteCorrect", make<VlxMatteCorrect, 0>, {{85, 1}}, {{1, 2, 3, 300}, {}}, kMaskAlpha,
        {1, 2, 3, 255}, {85, 86}),
    // (255 * 60 + 30) / 60 capped, (255 * 90 + 50) / 100, ...; 255 - (250 * 255 + 180) / 360.
    row("VlxClearFrame", make<VlxClearFrame>, {}, {{60, 90, 100, 7}, {255, 255, 255, 1}, {60, 100, 200, 2}},
        kMaskAlpha, {255, 230, 128, 77.41667f}, {}),
    // Twice the excesses (200 * 58 - 90 * 60) / 140 and (200 * 62 - 90 * 80) / 120 is less than 90.
    row("VlxSubRegion", make<VlxSubRegion>, {{75, 60}, {76, 80}, {77, 200}, {4, 200}, {5, 0}},
        {{58, 62, 90, 30}}, kMaskAlpha, {58, 62, 90, 0}, {75, 76, 77, 4, 5, 6, 7}),
    // Dominance over role 1: 103, against 193 - 10 - 90 of its own, against 200 - 10 - 80 of the plate.
    row("VlxClearRegionCP", make<VlxClearRegionCP>, {}, {{62, 90, 193, 30}, {60, 80, 200, 0}}, kMaskAlpha,
        {62, 90, 193, 255}, {75, 76, 77, 37, 38, 39, 122}, RolePixel{62, 90, 193, 0}),
    // Role 1 is below 80 + 5 and above the plate's 70 + 5.
    row("VlxClearRegion", make<VlxClearRegion>, {{75, 60}, {76, 80}, {77, 200}},
        {{63, 83, 200, 0}, {60, 70, 200, 9}, {0, 0, 0, 9}, {0, 0, 0, 9}}, kMaskAlpha, {63, 83, 200, 255},
        {75, 76, 77, 37, 38, 39, 122, 191, 192, 29, 30, 31, 32}, RolePixel{63, 83, 200, 0}),
    row("VlxComputeIsland", make<VlxComputeIsland>, {{232, 1}}, {{1, 2, 3, 30}}, kMaskAlpha, {1, 2, 3, 30},
        {232}),
    // Pushed by half of 100 - 10: colour times 210 / 255, matte + 155 * 45 / 255.
    row("VlxCleanup", make<VlxCleanup>, {{62, 10}, {63, 50}}, {{60, 90, 120, 100}}, kMaskRgba,
        {49.41176f, 74.11765f, 98.82353f, 127.35294f}, {62, 63}),
    // Half as bright as the backing.
    row("VlxComputeShadow", make<VlxComputeShadow>, {{75, 60}, {76, 80}, {77, 200}}, {{100, 40, 30, 9}},
        kMaskAlpha, {100, 40, 30, 127.5f}, {75, 76, 77}),
    // A fifth of shadow on four fifths of matte.
    row("VlxCombineShadow", make<VlxCombineShadow>, {{161, 10}, {162, 20}, {163, 100}},
        {{1, 2, 3, 9}, {0, 0, 0, 204}, {0, 0, 0, 51}}, kMaskAlpha, {2.6f, 5.2f, 19, 163.2f},
        {161, 162, 163, 65, 66, 67}),
    // No pixel is clear: the backing, half a level added in each pass, of 7 and of 3 pixels.
    row("VlxSmartInterpol", make<VlxSmartInterpol>, {{75, 60}, {76, 80}, {77, 200}}, {kForeground, {}},
        kMaskRgb, {60.76190f, 80.76190f, 200.76190f, 30}, {75, 76, 77}),
    row("VlxShrinkS", make<VlxShrinkS>, {}, {kForeground}, kMaskAlpha, kForeground, {8, 251}),
    row("VlxShrink", make<VlxShrink, 0U>, {}, {kForeground}, kMaskAlpha, kForeground, {40, 250}),
    // Negative alpha is clipped.
    row("VlxShrinkCU", make<VlxShrinkCU>, {}, {{1, 2, 3, -30}}, kMaskAlpha, {1, 2, 3, 0}, {55, 56}),
    row("VlxBlurCU", make<VlxBlurCU>, {{57, 2}}, {kForeground}, kMaskAlpha, kForeground, {57, 58}),
    row("VlxShadowBlur", make<VlxShadowBlur>, {{69, 1}}, {kForeground}, kMaskAlpha, kForeground, {68, 69}),
};

// An operator with its controls and inputs; the colours of the inputs lie where the screen has its roles.
struct Wired {
    explicit Wired(const Case& c, int color_index = 0, int clean_plate = 0) : op(c.make(controls.block)) {
        for (const auto& [index, value] : c.settings) controls.block.set(index, value);
        controls.block.set(120, color_index);
        controls.block.set(122, clean_plate);
        sources = connect_role_inputs(*op, c.inputs, color_index);
    }
    Hash hash() {
        if (auto* const stage = dynamic_cast<VlxIop*>(op.get())) {
            stage->setup();
        } else {
            dynamic_cast<VlxNormalize&>(*op).setup();
        }
        return op->hash();
    }

    StageControls controls;
    RoleInputs sources;
    std::unique_ptr<Iop> op;
};

}  // namespace

TEST(Operators, MakeTheirChannelsForEveryScreenAndPassTheOthers) {
    for (const Case& c : kCases) {
        for (const int plate : {0, 1}) {
            for (const int screen : {0, 1, 2}) {
                Wired wired(c, screen, plate);
                EXPECT_STREQ(wired.op->class_name(), c.name);
                const ChannelSet others = kMaskRgba + kDepth - c.made;
                const Row passed = fetch_row(*wired.op, others);
                for (std::size_t i = 1; i < wired.sources.size(); ++i) {
                    EXPECT_EQ(wired.sources[i]->rows(), 0) << c.name;
                }
                const Row made = fetch_row(*wired.op, c.made);
                const Row row = fetch_row(*wired.op, kMaskRgba + kDepth);
                const RolePixel expected =
                    plate != 0 ? c.expected_with_plate.value_or(c.expected) : c.expected;
                for (std::size_t i = 0; i < 4; ++i) {
                    const Channel channel = kRoles[screen][i];
                    EXPECT_NEAR(row[channel][6], expected[i], 1e-3f) << c.name << screen << i;
                    const bool passes = others.has(channel);
                    const float alone = passes ? passed[channel][6] : made[channel][6];
                    EXPECT_EQ(alone, passes ? c.inputs[0][i] : row[channel][6]) << c.name << i;
                }
                EXPECT_EQ(row[kDepth][6] == 77.0f, others.has(kDepth)) << c.name;
            }
        }
    }
}

TEST(Operators, ClearRegionReadsTheMattesInUse) {
    const auto region = std::find_if(kCases.begin(), kCases.end(),
                                     [](const Case& c) { return c.name == std::string("VlxClearRegion"); });
    Wired wired(*region, 0, 1);
    for (const auto& [flag, expected] : {std::pair{191, 255.0f}, std::pair{192, 0.0f}}) {
        wired.controls.block.set(flag, 1);
        wired.hash();
        EXPECT_EQ(fetch_row(*wired.op, kMaskAlpha)[kAlpha][0], expected);
    }
}

TEST(Operators, HashListedControlsAndInputsInUse) {
    for (const Case& c : kCases) {
        Wired wired(c);
        ControlBlock& block = wired.controls.block;
        for (int i = 0; i < ControlBlock::kCount + 2; ++i) {
            const Hash before = wired.hash();
            std::int32_t& value = i < ControlBlock::kCount
                                      ? wired.controls.values[static_cast<std::size_t>(i)]
                                  : i == ControlBlock::kCount ? block.overlayShrinkV
                                                              : block.subjectShrinkV;
            value += 1;
            EXPECT_EQ(wired.hash() != before, c.hashed.contains(i)) << c.name << ' ' << i;
            value -= 1;
        }
        for (const int in_use : {0, 1}) {
            for (const int flag : {122, 191, 192}) wired.controls.block.set(flag, in_use);
            for (std::size_t n = 0; n < wired.sources.size(); ++n) {
                const Hash before = wired.hash();
                wired.sources[n]->invalidate();
                EXPECT_EQ(wired.hash() != before, in_use != 0 || !c.optional(n)) << c.name << ' ' << n;
            }
        }
    }
}

TEST(Operators, TheCrudeMattesShareTheirHelp) {
    for (const Case& c : kCases) {
        const std::string help = Wired(c).op->help_text();
        const bool crude = c.name == std::string("VlxSubRegion") || c.name == std::string("VlxClearRegionCP");
        EXPECT_EQ(help.rfind(crude ? "Calculates a \"crude\" matte" : "Veloxa Internal Operator", 0), 0U);
    }
}
