// Evens out the backing of the foreground against a clean plate.
//
// Input 0 "Foreground", 1 "CleanPlate", 2 "ClearFrame" (the interpolated backing): colour on the working
// scale. Output: corrected colour, alpha = how far each pixel is darker than the clear frame, which serves
// as shadow density. Without alpha in the request input 0 passes. Reads "ColorIndex"; hashes inputs alone.
// A pixel whose clear frame is black takes its alpha from the pixel to its left, from the box's left edge
// on, so that pixels do not depend on how a caller cuts rows.
#pragma once

#include "framework/VlxIop.h"

class VlxClearFrame final : public VlxIop {
  public:
    VlxClearFrame(const Zo::Image::NodeContext& context, const ControlBlock* controls)
        : VlxIop(context, controls) {
        inputs(3);
    }

    const char* class_name() const override { return "VlxClearFrame"; }
    const char* input_label(int input, char* buffer) const override;
    void setup() override;

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
