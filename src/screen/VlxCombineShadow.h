// Folds the retained shadow back into the key.
//
// Input 0 "Foreground": keyed colour, 1 "Matte": alpha, 255 = backing, 2 "Shadow": alpha, shadow density; all
// on the working scale. Output: colour with the shadow's tint, alpha = the matte lowered where there is
// shadow. Reads "Shadow Tint ", "Shadow Density ", "Shadow High ", "Shadow Low " and "ColorIndex"; hashes all
// but the last.
#pragma once

#include "framework/VlxIop.h"

class VlxCombineShadow final : public VlxIop {
  public:
    VlxCombineShadow(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(3);
    }

    const char* class_name() const override { return "VlxCombineShadow"; }
    const char* input_label(int input, char* buffer) const override;
    void setup() override;
    Zo::Image::ChannelSet kept_channels() const override { return Zo::Image::kMaskRgba; }

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
