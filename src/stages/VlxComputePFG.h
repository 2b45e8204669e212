// The processed foreground: the plate with the backing's share taken out of it, and its opacity.
//
// Input 0 "Foreground": red, green, blue on the working scale. Input 1 "Cleanplate": the same, read only
// while "CleanPlate" is set; then it is the backing pixel by pixel, else "Backing Color" is.
// Input 2 "ClippedMatte": alpha, 255 = pure backing. Input 3 "PreMatte": alpha, not 0 on certain backing.
// Output: processed colour, alpha = opacity (255 = solid).
// Reads "Backing Color", "BG Veiling", "CleanPlate", "ColorIndex", "ScreenCorrect"; hashes all but the last
// two. Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/VlxIop.h"

class VlxComputePFG final : public VlxIop {
  public:
    VlxComputePFG(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(4);
    }

    const char* class_name() const override { return "VlxComputePFG"; }
    const char* input_label(int input, char* buffer) const override;
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;

  private:
    bool has_clean_plate() const { return controls().get(controls::kCleanPlate) != 0; }
};
