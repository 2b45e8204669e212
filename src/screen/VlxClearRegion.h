// The clear region: which pixels show nothing but backing.
//
// Input 0: foreground colour on the working scale, its alpha the crude matte while "CleanPlate" is set;
// 1: clean plate, 2: garbage matte, 3: holdout matte, each read while its control ("CleanPlate", "Garbage",
// "Holdout") is set. Output: input 0's colour, alpha = 255 for clear, 0 for the rest.
// Reads "Backing Color ", "Screen Tolerance ", the four "Roto Brights/Darks", the flags and "ColorIndex";
// hashes all but the last.
#pragma once

#include "framework/VlxIop.h"

class VlxClearRegion final : public VlxIop {
  public:
    VlxClearRegion(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(4);
    }

    const char* class_name() const override { return "VlxClearRegion"; }
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
