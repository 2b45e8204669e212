// The raw colour-difference matte.
//
// Input 0 "Foreground": red, green, blue on the working scale. Input 1 "Cleanplate": the same, read only
// while "CleanPlate" is set; then it is the backing pixel by pixel, else "Backing Color" is.
// Output: the foreground's colour, alpha = matte (255 pure backing, 0 and below subject; not clamped to 0).
// Reads "Backing Color", "Matte Density Brights/Darks/Cool/Warm", "CleanPlate", "ColorIndex"; hashes all
// but the last. Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/RowStage.h"
#include "stages/MatteKernel.h"

class VlxComputeMatte final : public RowStage {
  public:
    VlxComputeMatte(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxComputeMatte",
                    .inputs = {{kMaskRgb, "Foreground"}, {kMaskRgb, "Cleanplate", controls::kCleanPlate}},
                    .hashed = {controls::kBackingColor, controls::kMatteDensityBrights,
                               controls::kMatteDensityDarks, controls::kMatteDensityCool,
                               controls::kMatteDensityWarm, controls::kCleanPlate},
                    .unhashed = {controls::kColorIndex}},
                   {.made = kMaskAlpha, .declared = kMaskAlpha, .added = kMaskAlpha}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        const RoleRows roles(controls());
        const MatteParams params = matte_params(controls());
        float* const matte = row.overwrite(kAlpha);
        if (reads(1)) {
            matte_clean_plate(params, roles.read(in[0]), roles.read(in[1]), matte, row.width());
        } else {
            matte_constant(params, roles.read(in[0]), matte, row.width());
        }
    }
};
