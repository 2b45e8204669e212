// The processed foreground: the plate with the backing's share taken out of it, and its opacity.
//
// Input 0 "Foreground": red, green, blue on the working scale. Input 1 "Cleanplate": the same, read only
// while "CleanPlate" is set; then it is the backing pixel by pixel, else "Backing Color" is.
// Input 2 "ClippedMatte": alpha, 255 = pure backing. Input 3 "PreMatte": alpha, not 0 on certain backing.
// Output: processed colour, alpha = opacity (255 = solid).
// Reads "Backing Color", "BG Veiling", "CleanPlate", "ColorIndex", "ScreenCorrect"; hashes all but the last
// two. Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/RowStage.h"
#include "stages/ProcessedForegroundKernel.h"

class VlxComputePFG final : public RowStage {
  public:
    VlxComputePFG(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxComputePFG",
                    .inputs = {{kMaskRgb, "Foreground"},
                               {kMaskRgb, "Cleanplate", controls::kCleanPlate},
                               {kMaskAlpha, "ClippedMatte"},
                               {kMaskAlpha, "PreMatte"}},
                    .hashed = {controls::kBackingColor, controls::kCleanPlate, controls::kBgVeiling},
                    .unhashed = {controls::kColorIndex, controls::kScreenCorrect}},
                   {.made = kMaskRgba, .declared = kMaskRgba, .added = kMaskAlpha}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        const RoleRows roles(controls());
        const VeilParams params = veil_params(controls());
        const VeilMattes mattes{in[2][kAlpha], in[3][kAlpha]};
        const RoleOutput out = roles.overwrite(row);
        float* const alpha = row.overwrite(kAlpha);
        if (reads(1)) {
            unveil_clean_plate(params, roles.read(in[0]), roles.read(in[1]), mattes, out, alpha, row.width());
        } else {
            unveil_constant(params, roles.read(in[0]), mattes, out, alpha, row.width());
        }
    }
};
