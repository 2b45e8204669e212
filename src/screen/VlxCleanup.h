// Clears the noise that is left in the backing area.
//
// Input 0: colour and matte on the working scale (matte 255 = full backing). Output: both, cleaned.
// Reads and hashes "Clean-up Recover " (the threshold) and "Clean-up " (the strength in per cent). Rows are
// independent, on any thread.
#pragma once

#include "framework/RowStage.h"
#include "screen/CleanupKernel.h"

class VlxCleanup final : public RowStage {
  public:
    VlxCleanup(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxCleanup",
                    .inputs = {{kMaskAlpha}},
                    .hashed = {controls::kCleanUpRecover, controls::kCleanUp}},
                   {.made = kMaskAlpha, .declared = kMaskRgba, .wanted = kMaskRgba}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet channels, Row& row) const override {
        const CleanupParams params = cleanup_params(controls());
        const float* const matte = in[0][kAlpha];
        for (const Channel c : channels& kMaskRgb) {
            cleanup_colour(params, matte, in[0][c], row.overwrite(c), row.width());
        }
        if (channels.has(kAlpha)) {
            cleanup_matte(params, matte, row.overwrite(kAlpha), row.width());
        }
    }
};
