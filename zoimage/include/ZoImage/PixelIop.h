// An operator whose every output pixel depends only on the same pixel of input 0.
#pragma once

#include "ZoImage/Iop.h"

namespace Zo::Image {

class PixelIop : public Iop {
  public:
    explicit PixelIop(const NodeContext& context) : Iop(context) { inputs(1); }

    // Made again from its input's row nearly as fast as read back.
    ChannelSet kept_channels() const override { return kMaskNone; }

  protected:
    // Widens or leaves the set of channels that pixel_engine reads to make `channels`.
    virtual void in_channels(int /*input*/, ChannelSet& /*channels*/) const {}
    // Computes channels of the span from `in`, which holds what in_channels asked for.
    virtual void pixel_engine(const Row& in, int y, int x, int r, ChannelSet channels, Row& out) = 0;

    void _request(int x, int y, int r, int t, ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const ChannelSet& channels, Row& row) override;
};

}  // namespace Zo::Image
