// Folds the retained shadow back into the key.
//
// Input 0 "Foreground": keyed colour, 1 "Matte": alpha, 255 = backing, 2 "Shadow": alpha, shadow density; all
// on the working scale. Output: colour with the shadow's tint, alpha = the matte lowered where there is
// shadow. Reads "Shadow Tint ", "Shadow Density ", "Shadow High ", "Shadow Low " and "ColorIndex"; hashes all
// but the last. Rows are independent, on any thread.
#pragma once

#include "framework/RowStage.h"
#include "screen/CombineShadowKernel.h"

class VlxCombineShadow final : public RowStage {
  public:
    VlxCombineShadow(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxCombineShadow",
                    .inputs = {{kMaskRgb, "Foreground"}, {kMaskAlpha, "Matte"}, {kMaskAlpha, "Shadow"}},
                    .hashed = {controls::kShadowTint, controls::kShadowDensity, controls::kShadowHigh,
                               controls::kShadowLow},
                    .unhashed = {controls::kColorIndex}},
                   // Colour changes too, but a fetch of colour alone gets the foreground's.
                   {.made = kMaskRgba, .declared = kMaskAlpha, .added = kMaskAlpha}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        const RoleRows roles(controls());
        combine_shadow(combine_shadow_params(controls()), roles.read(in[0]), in[1][kAlpha], in[2][kAlpha],
                       roles.overwrite(row), row.overwrite(kAlpha), row.width());
    }
};
