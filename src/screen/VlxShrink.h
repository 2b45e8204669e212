// Shrinks the non-zero area of a binary matte by whole pixels: alpha becomes 0 within a rectangle around
// every 0 and keeps its value elsewhere.
//
// Input 0: alpha, 255 = backing. Horizontal radius "Screen Overlay Shrink ", vertical radius the control
// block's overlayShrinkV, each enlarged by the mode. Hashes both values. Rows may be made on any thread.
#pragma once

#include "framework/VlxFilter_t.h"

class VlxShrinkH final : public VlxBaseFilter {
  public:
    using VlxBaseFilter::VlxBaseFilter;
    bool horizontal() const override { return true; }

  protected:
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};

class VlxShrinkV final : public VlxBaseFilter {
  public:
    using VlxBaseFilter::VlxBaseFilter;
    bool horizontal() const override { return false; }

  protected:
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};

class VlxShrink final : public VlxFilter_t<VlxShrinkH, VlxShrinkV> {
  public:
    // `mode` is added to both radii: 1 for the crude matte of a clean plate, 0 for the screen area.
    VlxShrink(const NodeContext& context, const ControlBlock* controls, unsigned mode)
        : VlxFilter_t(context, controls,
                      {.class_name = "VlxShrink",
                       .inputs = {{kMaskAlpha}},
                       .hashed = {controls::kScreenOverlayShrink}}),
          mode_(mode) {}

    void setup() override;
    void configure() override;

  private:
    unsigned mode_;
};
