// Shadow density without a clean plate, from the interpolated backing.
//
// Input 0: the backing's colour on the working scale. Output: the same colour, alpha = shadow density, 0 to
// 255. Reads "Backing Color " and "ColorIndex"; hashes the first. Rows are independent, on any thread.
#pragma once

#include "framework/RowStage.h"
#include "screen/ComputeShadowKernel.h"

class VlxComputeShadow final : public RowStage {
  public:
    VlxComputeShadow(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxComputeShadow",
                    .inputs = {{kMaskRgb}},
                    .hashed = {controls::kBackingColor},
                    .unhashed = {controls::kColorIndex}},
                   {.made = kMaskAlpha, .declared = kMaskAlpha, .added = kMaskAlpha}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        compute_shadow(compute_shadow_params(controls()), RoleRows(controls()).read(in[0]),
                       row.overwrite(kAlpha), row.width());
    }
};
