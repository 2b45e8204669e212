// Clears the noise that is left in the backing area.
//
// Input 0: colour and matte on the working scale (matte 255 = full backing). Output: both, cleaned.
// Reads and hashes "Clean-up Recover " (the threshold) and "Clean-up " (the strength in per cent).
#pragma once

#include "framework/VlxIop.h"

class VlxCleanup final : public VlxIop {
  public:
    VlxCleanup(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(1);
    }

    const char* class_name() const override { return "VlxCleanup"; }
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
