// Brings an image input of the node onto the working scale 0 to 255, every channel alike.
//
// Input 0: the image as the host delivers it. Output: the same channels; highlights roll off softly.
// Depends on no control. Rows are independent, on any thread.
#pragma once

#include "ZoImage/PixelIop.h"

class VlxNormalize final : public Zo::Image::PixelIop {
  public:
    using PixelIop::PixelIop;

    const char* class_name() const override { return "VlxNormalize"; }
    const char* help_text() const override { return "Veloxa Internal Operator"; }

    // As the other internal operators' setup: called after wiring, invalidates when the input changed.
    void setup();

  protected:
    void pixel_engine(const Zo::Image::Row& in, int y, int x, int r, Zo::Image::ChannelSet channels,
                      Zo::Image::Row& out) override;
};
