// The clean-up shrink: grows the bright side of the matte with a maximum filter of fractional radius, which
// takes away from the subject.
//
// Input 0: alpha. Radii "Clean-up Shrink " and "CUShrinkV", in tenths of a pixel; hashes both. A pass is
// skipped while its half-width is below 1, that is from a radius of -1 pixel down; a radius of 0 clips
// negative alpha to 0. Rows may be made on any thread.
#pragma once

#include "framework/VlxFilter_t.h"

// The radius of the base class is the half-width of the window here.
class VlxShrinkCUBase : public VlxBaseFilter {
  public:
    using VlxBaseFilter::VlxBaseFilter;

    // In pixels. The half-width is the radius truncated toward zero, plus 1.
    void set_radius(float radius);
    // Weight of the two ends of the window; every weight between them is 1.
    float fraction() const { return fraction_; }

  private:
    float fraction_ = 0.0f;
};

class VlxShrinkCUH final : public VlxShrinkCUBase {
  public:
    using VlxShrinkCUBase::VlxShrinkCUBase;
    bool horizontal() const override { return true; }

  protected:
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};

class VlxShrinkCUV final : public VlxShrinkCUBase {
  public:
    using VlxShrinkCUBase::VlxShrinkCUBase;
    bool horizontal() const override { return false; }

  protected:
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};

class VlxShrinkCU final : public VlxFilter_t<VlxShrinkCUH, VlxShrinkCUV> {
  public:
    VlxShrinkCU(const NodeContext& context, const ControlBlock* controls)
        : VlxFilter_t(context, controls,
                      {.class_name = "VlxShrinkCU",
                       .inputs = {{kMaskAlpha}},
                       .hashed = {controls::kCleanUpShrink, controls::kCUShrinkV}}) {}

    void configure() override;
};
