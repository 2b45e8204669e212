// What the stages' plumbing has in common: channels that pass, channels that are made, and the hash.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>

#include "stages/ColorConformKernel.h"
#include "stages/SpillKernel.h"
#include "stages/VlxColorCorrection.h"
#include "stages/VlxComputeMatte.h"
#include "stages/VlxComputePFG.h"
#include "stages/VlxNormalize.h"
#include "stages/VlxOutputMatte.h"
#include "stages/VlxSpillSuppression.h"
#include "support/RoleInputs.h"
#include "support/StageControls.h"

using namespace Zo::Image;
using test::fetch_row;
using test::kDepth;
using test::kRoles;
using test::StageControls;

namespace {

using Pixel = test::RolePixel;

constexpr Pixel kForeground{60, 90, 120, 30};
constexpr Pixel kPlate{12, 24, 36, 5};
constexpr Pixel kMatte{1, 2, 3, 102};
constexpr Pixel kPreMatte{4, 5, 6, 0};

StageControls asymmetric_controls() {
    return {{75, 10},   {76, 20},   {77, 200}, {173, 100}, {174, 50},  {175, 25}, {115, 10}, {116, 60},
            {117, 200}, {105, 20},  {106, 70}, {110, 30},  {202, -10}, {207, 10}, {203, 90}, {208, 120},
            {213, 80},  {204, -20}, {209, 10}, {214, 5},   {234, 33},  {235, 10}, {236, 5}};
}

template <class T>
std::unique_ptr<Iop> make(const ControlBlock& controls) {
    if constexpr (std::is_base_of_v<VlxIop, T>) {
        return std::make_unique<T>(NodeContext{}, &controls);
    } else {
        return std::make_unique<T>(NodeContext{});
    }
}

// What a kernel makes of the foreground. The kernels have tests of their own.
template <class Kernel>
Pixel by_kernel(Kernel kernel) {
    Pixel out = kForeground;
    const RolePixels in{&kForeground[0], &kForeground[1], &kForeground[2]};
    kernel(asymmetric_controls().block, in, RoleOutput{&out[0], &out[1], &out[2]});
    return out;
}

struct Stage {
    const char* name;
    std::unique_ptr<Iop> (*make)(const ControlBlock&);
    std::vector<Pixel> inputs;
    ChannelSet made;
    std::set<int> hashed;
    Pixel expected;             // in role order
    Pixel expected_with_plate;  // while "CleanPlate" is set; where that is hashed, input 1 then is, too
};

std::vector<Stage> stages() {
    const Pixel spill =
        by_kernel([](const ControlBlock& controls, const RolePixels& in, const RoleOutput& out) {
            suppress_spill(spill_params(controls), in, &kForeground[3], &kPreMatte[3], out, 1);
        });
    const Pixel colour =
        by_kernel([](const ControlBlock& controls, const RolePixels& in, const RoleOutput& out) {
            conform_colour(conform_params(controls), in, &kForeground[3], out, 1);
        });
    const Pixel turned{60, 90, 120, 225};
    // (59.5 / 2 / 60.5 + 0.5) 255 and so on.
    const Pixel normal{252.89256f, 253.59116f, 253.94191f, 250.81967f};
    return {
        // m1 = (200 * 90 - 120 * 20) / 180; 255 (120 - m1) / 200. Plate: (36 * 90 - 120 * 24) / (36 - 24).
        {"VlxComputeMatte",
         make<VlxComputeMatte>,
         {kForeground, kPlate},
         kMaskAlpha,
         {75, 76, 77, 79, 80, 81, 82, 122},
         {60, 90, 120, 42.5f},
         {60, 90, 120, 637.5f}},
        // Two fifths of the veils 10, 10, 50; of 12, 12, 9.
        {"VlxComputePFG",
         make<VlxComputePFG>,
         {kForeground, kPlate, kMatte, kPreMatte},
         kMaskRgba,
         {75, 76, 77, 122, 173, 174, 175},
         {56, 86, 100, 153},
         {55.2f, 85.2f, 116.4f, 153}},
        {"VlxSpillSuppression",
         make<VlxSpillSuppression>,
         {kForeground, kPreMatte},
         kMaskRgb,
         {75, 76, 77, 105, 106, 107, 110, 111, 115, 116, 117, 118},
         spill,
         spill},
        {"VlxColorCorrection",
         make<VlxColorCorrection>,
         {kForeground},
         kMaskRgb,
         {200, 201, 202, 203, 204, 205, 206, 207, 208, 209, 210, 211, 212, 213, 214, 234, 235, 236},
         colour,
         colour},
        {"VlxOutputMatte", make<VlxOutputMatte>, {kForeground}, kMaskAlpha, {}, turned, turned},
        {"VlxNormalize", make<VlxNormalize>, {kForeground}, kMaskAll, {}, normal, normal},
    };
}

// A stage with its controls and inputs; the colours of the inputs lie where the screen has its roles.
struct Wired {
    explicit Wired(const Stage& stage, int color_index = 0, int clean_plate = 0)
        : op(stage.make(controls.block)) {
        controls.block.set(120, color_index);
        controls.block.set(122, clean_plate);
        sources = test::connect_role_inputs(*op, stage.inputs, color_index);
    }
    Hash hash() {
        if (auto* const stage = dynamic_cast<VlxIop*>(op.get())) {
            stage->setup();
        } else {
            dynamic_cast<VlxNormalize&>(*op).setup();
        }
        return op->hash();
    }

    StageControls controls = asymmetric_controls();
    test::RoleInputs sources;
    std::unique_ptr<Iop> op;
};

}  // namespace

TEST(StageOperators, MakeTheirChannelsForEveryScreenAndPassTheOthers) {
    for (const Stage& stage : stages()) {
        for (const int plate : {0, 1}) {
            for (const int screen : {0, 1, 2}) {
                Wired wired(stage, screen, plate);
                EXPECT_STREQ(wired.op->class_name(), stage.name);
                const ChannelSet others = kMaskRgba + kDepth - stage.made;
                const Row passed = fetch_row(*wired.op, others);
                for (std::size_t i = 1; i < wired.sources.size(); ++i) {
                    EXPECT_EQ(wired.sources[i]->rows(), 0) << stage.name;
                }
                const Row made = fetch_row(*wired.op, stage.made);
                const Row row = fetch_row(*wired.op, kMaskRgba + kDepth);
                const Pixel& expected = plate != 0 ? stage.expected_with_plate : stage.expected;
                for (std::size_t i = 0; i < 4; ++i) {
                    EXPECT_NEAR(row[kRoles[screen][i]][6], expected[i], 1e-3f) << stage.name << screen << i;
                }
                for (const Channel c : stage.made) EXPECT_EQ(made[c][6], row[c][6]) << stage.name;
                for (const Channel c : others) EXPECT_EQ(passed[c][6], row[c][6]) << stage.name;
                EXPECT_EQ(row[kDepth][6] == 77.0f, others.has(kDepth)) << stage.name;
            }
        }
    }
}

TEST(StageOperators, HashListedControlsAndInputs) {
    for (const Stage& stage : stages()) {
        Wired wired(stage);
        for (int i = 0; i < ControlBlock::kCount; ++i) {
            const Hash before = wired.hash();
            std::int32_t& value = wired.controls.values[static_cast<std::size_t>(i)];
            value += 1;
            EXPECT_EQ(wired.hash() != before, stage.hashed.contains(i)) << stage.name << ' ' << i;
            value -= 1;
        }
        for (const int plate : {0, 1}) {
            wired.controls.block.set(122, plate);
            for (std::size_t n = 0; n < wired.sources.size(); ++n) {
                const Hash before = wired.hash();
                wired.sources[n]->invalidate();
                const bool is_unused_plate = n == 1 && plate == 0 && stage.hashed.contains(122);
                EXPECT_EQ(wired.hash() != before, !is_unused_plate) << stage.name << ' ' << n;
            }
        }
    }
}
