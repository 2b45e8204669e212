// Conforms the colours of the keyed foreground to the background.
//
// Input 0: red, green, blue on the working scale, alpha = opacity (255 = solid). Output: the same with its
// colour conformed; alpha as it came.
// Reads "Color Conform Darks/Mid-tones/Brights", "Hue", "Saturation", "Brightness", "ColorIndex"; hashes
// all but the last, and "FGSample" and "BGSample". Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/RowStage.h"
#include "stages/ColorConformKernel.h"

class VlxColorCorrection final : public RowStage {
  public:
    VlxColorCorrection(const NodeContext& context, const ControlBlock* controls)
        : RowStage(context, controls,
                   {.class_name = "VlxColorCorrection",
                    .inputs = {{kMaskRgba}},
                    .hashed = {controls::kFgSample, controls::kBgSample, controls::kColorConformDarks,
                               controls::kColorConformMidTones, controls::kColorConformBrights,
                               controls::kHue, controls::kSaturation, controls::kBrightness},
                    .unhashed = {controls::kColorIndex}},
                   {.made = kMaskRgb, .declared = kMaskRgb}) {}

  protected:
    void run(int /*y*/, const Rows& in, ChannelSet /*channels*/, Row& row) const override {
        const RoleRows roles(controls());
        conform_colour(conform_params(controls()), roles.read(in[0]), in[0][kAlpha], roles.overwrite(row),
                       row.width());
    }
};
