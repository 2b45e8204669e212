// The matte of the node's alpha output: input 0's alpha turned over and clamped to 0..255.
//
// Input 0: alpha on the working scale. Output: alpha = 255 - alpha; all else as it came.
// Depends on no control. Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/RowStage.h"
#include "stages/OutputMatteKernel.h"

class VlxOutputMatte final : public RowStage {
  public:
    VlxOutputMatte(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxOutputMatte", .inputs = {{kMaskAlpha}}, .hashed = {}},
                   {.made = kMaskAlpha, .declared = kMaskAlpha, .added = kMaskAlpha}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        output_matte(in[0][kAlpha], row.overwrite(kAlpha), row.width());
    }
};
