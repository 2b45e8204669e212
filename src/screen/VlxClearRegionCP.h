// The crude matte: where the foreground shows backing, judged against the clean plate.
//
// Input 0: foreground, input 1: clean plate (read while "CleanPlate" is set, else the foreground stands in);
// colour on the working scale. Output: the foreground's colour, alpha = 255 or 0.
// Reads "Screen Tolerance ", "CleanPlate", "ColorIndex"; hashes "Backing Color ", "Screen Tolerance ",
// "CleanPlate". Rows are independent, on any thread.
#pragma once

#include "framework/RowStage.h"
#include "screen/CrudeMatteKernel.h"

class VlxClearRegionCP final : public RowStage {
  public:
    VlxClearRegionCP(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxClearRegionCP",
                    .inputs = {{kMaskRgb}, {kMaskRgb, nullptr, controls::kCleanPlate}},
                    .hashed = {controls::kBackingColor, controls::kScreenTolerance, controls::kCleanPlate},
                    .unhashed = {controls::kColorIndex}},
                   {.made = kMaskAlpha, .declared = kMaskAlpha, .added = kMaskAlpha}) {}

    const char* help_text() const override {
        return "Calculates a \"crude\" matte that is used in the creation of the Clear Region. \n"
               "We only calculate a Crude Matte is we have a Clean Plate";
    }

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        const RoleRows roles(controls());
        crude_matte(crude_matte_params(controls()), roles.read(in[0]), roles.read(in[reads(1) ? 1 : 0]),
                    row.overwrite(kAlpha), row.width());
    }
};
