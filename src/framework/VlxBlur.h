// Box blur of alpha, one pass a direction. With radii h and v the two average a box of 2h + 1 by 2v + 1
// pixels, each with its own scale. VlxFilter_t<VlxBlurH, VlxBlurV> joins them.
#pragma once

#include "framework/VlxBaseFilter.h"

class VlxBlurBase : public VlxBaseFilter {
  public:
    using VlxBaseFilter::VlxBaseFilter;

    // Every output pixel is a direct sum over its window, so an absurd radius would never finish. Far above
    // the panel's range; larger radii count as this.
    static constexpr int kLargestRadius = 4096;

    // Sets the radius with its scale 1 / (2 * radius + 1); returns the width 2 * radius + 1.
    int set_radius(int radius);
    float scale() const { return scale_; }

  private:
    float scale_ = 0.0f;
};

class VlxBlurH final : public VlxBlurBase {
  public:
    using VlxBlurBase::VlxBlurBase;
    bool horizontal() const override { return true; }

  protected:
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};

class VlxBlurV final : public VlxBlurBase {
  public:
    using VlxBlurBase::VlxBlurBase;
    bool horizontal() const override { return false; }

  protected:
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;
};
