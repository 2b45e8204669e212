// Takes the backing colour that spilled onto the subject out of it.
//
// Input 0: red, green, blue on the working scale, alpha = opacity (255 = solid). Input 1 "PreMatte": alpha,
// not 0 on pixels that are left alone. Output: input 0 with its spill suppressed; alpha as it came.
// Reads "Backing Color", "Ambiance", "Spill Suppress Darks/Cool/Warm/Mid-Tones/Brights", "Strength",
// "ColorIndex"; hashes all but the last. Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/RowStage.h"
#include "stages/SpillKernel.h"

class VlxSpillSuppression final : public RowStage {
  public:
    VlxSpillSuppression(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxSpillSuppression",
                    .inputs = {{kMaskRgba, ""}, {kMaskAlpha, "PreMatte"}},
                    .hashed = {controls::kBackingColor, controls::kAmbiance, controls::kSpillDarks,
                               controls::kSpillCool, controls::kSpillWarm, controls::kSpillMidTones,
                               controls::kSpillBrights, controls::kStrength},
                    .unhashed = {controls::kColorIndex}},
                   {.made = kMaskRgb, .declared = kMaskRgb}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        const RoleRows roles(controls());
        suppress_spill(spill_params(controls()), roles.read(in[0]), in[0][kAlpha], in[1][kAlpha],
                       roles.overwrite(row), row.width());
    }
};
