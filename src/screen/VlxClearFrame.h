// Evens out the backing of the foreground against a clean plate.
//
// Input 0 "Foreground", 1 "CleanPlate", 2 "ClearFrame" (the interpolated backing): colour on the working
// scale. Output: corrected colour, alpha = how far each pixel is darker than the clear frame, which serves
// as shadow density. Without alpha in the request input 0 passes. Reads "ColorIndex"; hashes inputs alone.
// A pixel whose clear frame is black takes its alpha from the pixel to its left, from the box's left edge
// on, so that pixels do not depend on how a caller cuts rows. Rows are independent, on any thread.
#pragma once

#include "framework/RowStage.h"
#include "screen/ClearFrameKernel.h"

class VlxClearFrame final : public RowStage {
  public:
    VlxClearFrame(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxClearFrame",
                    .inputs = {{kMaskRgb, "Foreground"}, {kMaskRgb, "CleanPlate"}, {kMaskRgb, "ClearFrame"}},
                    .hashed = {},
                    .unhashed = {controls::kColorIndex}},
                   {.made = kMaskRgba, .declared = kMaskRgba, .added = kMaskRgba, .wanted = kMaskAlpha}) {}

  protected:
    void run(int y, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        const RoleRows roles(controls());
        clear_frame(roles.read(in[0]), roles.read(in[1]), roles.read(in[2]), before(y, roles, in[2]),
                    roles.overwrite(row), row.overwrite(kAlpha), row.width());
    }

  private:
    // The coverage of the pixel before the span, where the span's first pixel takes it.
    float before(int y, const RoleRows& roles, const Row& clear) const {
        const int left = info_.box.x;
        if (clear.x() <= left || !clear_frame_is_black(roles.read(clear))) return kFirstCoverage;
        Row fg_before(left, clear.x());
        fg_before.get(input(0), y, kMaskRgb);
        Row clear_before(left, clear.x());
        clear_before.get(input(2), y, kMaskRgb);
        return clear_frame_last_coverage(roles.read(fg_before), roles.read(clear_before), fg_before.width());
    }
};
