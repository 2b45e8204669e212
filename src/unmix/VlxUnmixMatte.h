// The unmixed subject as the stages behind the matte take it.
//
// Input 0: red, green, blue as the plate would store them, times alpha; alpha, 0 to 1. Output: the same on
// the working scale, alpha = 255 - 255 * alpha. Depends on no control. Rows are independent; engine keeps
// everything in locals.
#pragma once

#include "framework/RowStage.h"
#include "stages/NormalizeKernel.h"
#include "unmix/UnmixMatteKernel.h"

class VlxUnmixMatte final : public RowStage {
  public:
    VlxUnmixMatte(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls, {.class_name = "VlxUnmixMatte", .inputs = {{kMaskRgba}}, .hashed = {}},
                   {.made = kMaskRgba, .declared = kMaskRgba, .added = kMaskRgba}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet channels, Row& row) const override {
        for (const Channel c : channels& kMaskRgb) normalize(in[0][c], row.overwrite(c), row.width());
        if (channels.has(kAlpha)) unmix_matte(in[0][kAlpha], row.overwrite(kAlpha), row.width());
    }
};
