// Conforms the colours of the keyed foreground to the background.
//
// Input 0: red, green, blue on the working scale, alpha = opacity (255 = solid). Output: the same with its
// colour conformed; alpha as it came.
// Reads "Color Conform Darks/Mid-tones/Brights", "Hue", "Saturation", "Brightness", "ColorIndex"; hashes
// all but the last, and "FGSample" and "BGSample". Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/VlxIop.h"

class VlxColorCorrection final : public VlxIop {
  public:
    VlxColorCorrection(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(1);
    }

    const char* class_name() const override { return "VlxColorCorrection"; }
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
