// The subject area as film correction needs it, found without a clean plate.
//
// Input 0: colour on the working scale. Output: the same colour, alpha = 255 or 0.
// Reads "Backing Color ", "Film Brights ", "Film Darks ", "InnerCoolDensity", "InnerWarmDensity" and
// "ColorIndex"; hashes all but the last. Rows are independent, on any thread.
#pragma once

#include "framework/RowStage.h"
#include "screen/SubRegionKernel.h"

class VlxSubRegion final : public RowStage {
  public:
    VlxSubRegion(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxSubRegion",
                    .inputs = {{kMaskRgb}},
                    .hashed = {controls::kBackingColor, controls::kFilmBrights, controls::kFilmDarks,
                               controls::kInnerCoolDensity, controls::kInnerWarmDensity},
                    .unhashed = {controls::kColorIndex}},
                   {.made = kMaskAlpha, .declared = kMaskAlpha, .added = kMaskAlpha}) {}

    const char* help_text() const override {
        return "Calculates a \"crude\" matte that is used in the creation of the Clear Region. \n"
               "We only calculate a Crude Matte is we have a Clean Plate";
    }

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        sub_region(sub_region_params(controls()), RoleRows(controls()).read(in[0]), row.overwrite(kAlpha),
                   row.width());
    }
};
