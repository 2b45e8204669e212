// The matte of the node's alpha output: input 0's alpha turned over and clamped to 0..255.
//
// Input 0: alpha on the working scale. Output: alpha = 255 - alpha; all else as it came.
// Depends on no control. Rows are independent; engine keeps everything in locals.
#pragma once

#include "framework/VlxIop.h"

class VlxOutputMatte final : public VlxIop {
  public:
    VlxOutputMatte(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(1);
    }

    const char* class_name() const override { return "VlxOutputMatte"; }
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
