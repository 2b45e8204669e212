// The clear region: which pixels show nothing but backing.
//
// Input 0: foreground colour on the working scale, its alpha the crude matte while "CleanPlate" is set;
// 1: clean plate, 2: garbage matte, 3: holdout matte, each read while its control ("CleanPlate", "Garbage",
// "Holdout") is set. Output: input 0's colour, alpha = 255 for clear, 0 for the rest.
// Reads "Backing Color ", "Screen Tolerance ", the four "Roto Brights/Darks", the flags and "ColorIndex";
// hashes all but the last. Rows are independent, on any thread.
#pragma once

#include "framework/RowStage.h"
#include "screen/ClearRegionKernel.h"

class VlxClearRegion final : public RowStage {
  public:
    VlxClearRegion(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxClearRegion",
                    .inputs = {{kMaskRgba},
                               {kMaskRgb, nullptr, controls::kCleanPlate},
                               {kMaskAlpha, nullptr, controls::kGarbage},
                               {kMaskAlpha, nullptr, controls::kHoldout}},
                    .hashed = {controls::kBackingColor, controls::kScreenTolerance, controls::kCleanPlate,
                               controls::kHoldout, controls::kGarbage, controls::kRotoBrightsGR,
                               controls::kRotoDarksGR, controls::kRotoBrightsRG, controls::kRotoDarksRG},
                    .unhashed = {controls::kColorIndex}},
                   {.made = kMaskAlpha, .declared = kMaskAlpha, .added = kMaskAlpha}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        const RoleRows roles(controls());
        const RolePixels plate = roles.read(in[1]);
        const auto matte = [&](int input, int of) {
            return reads(of) ? in[static_cast<std::size_t>(input)][kAlpha] : nullptr;
        };
        clear_region(clear_region_params(controls()), roles.read(in[0]), reads(1) ? &plate : nullptr,
                     {.holdout = matte(3, 3), .crude = matte(0, 1), .garbage = matte(2, 2)},
                     row.overwrite(kAlpha), row.width());
    }
};
