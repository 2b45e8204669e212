// The raw colour-difference matte.
//
// Input 0 "Foreground": red, green, blue on the working scale. Input 1 "Cleanplate": the same, read only
// while "CleanPlate" is set; then it is the backing pixel by pixel, else "Backing Color" is.
// Output: the foreground's colour, alpha = matte (255 pure backing, 0 and below subject; not clamped to 0).
// Reads "Backing Color", "Matte Density Brights/Darks/Cool/Warm", "CleanPlate", "ColorIndex"; hashes all
// but the last. Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/VlxIop.h"

class VlxComputeMatte final : public VlxIop {
  public:
    VlxComputeMatte(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(2);
    }

    const char* class_name() const override { return "VlxComputeMatte"; }
    const char* input_label(int input, char* buffer) const override;
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
