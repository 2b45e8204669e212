// Takes the backing colour that spilled onto the subject out of it.
//
// Input 0: red, green, blue on the working scale, alpha = opacity (255 = solid). Input 1 "PreMatte": alpha,
// not 0 on pixels that are left alone. Output: input 0 with its spill suppressed; alpha as it came.
// Reads "Backing Color", "Ambiance", "Spill Suppress Darks/Cool/Warm/Mid-Tones/Brights", "Strength",
// "ColorIndex"; hashes all but the last. Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/VlxIop.h"

class VlxSpillSuppression final : public VlxIop {
  public:
    VlxSpillSuppression(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(2);
    }

    const char* class_name() const override { return "VlxSpillSuppression"; }
    const char* input_label(int input, char* buffer) const override;
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
