// Feeds one input of the keyer from an image of the host.
//
// The operator's box is the clip's whole frame, whatever part of it the image holds: the parts of a frame
// that are rendered apart then agree, as long as each image holds what this operator is asked for. Beyond the
// frame, the foreground and the clean plate repeat their edges. What a clean plate has beyond the foreground
// is not looked at: some hosts deliver it, others do not. The others are black and transparent beyond their
// frame, as everywhere in such a host: a drawn matte often ends at its shape.
#pragma once

#include "ZoImage/Hash.h"
#include "ZoImage/Iop.h"
#include "host/AbortPoll.h"
#include "images/PixelView.h"

namespace veloxa::ofx {

class Image;

class ClipImage final : public Zo::Image::Iop {
  public:
    enum class Role { kPicture, kBackground, kMatte };
    explicit ClipImage(Role role) : Iop(Zo::Image::NodeContext{}), role_(role) {}

    // Serves the image until clear(), over `foreground` too where it ends in black. An empty image is black.
    // The identity names the pixels: what was computed from an image of the same identity is kept. The image
    // outlives its use. Validation thread.
    void serve(const Image& image, const Zo::Image::Box& foreground, const Zo::Image::Hash& identity);
    // Has no pixels but the box that they would have, so that requests can be made.
    void outline(const Zo::Image::Box& frame, const Zo::Image::Box& foreground,
                 Zo::Image::Hash identity = {});
    void clear() { view_ = {}; }
    // Asked at every row, so that a host can give a render up while no row of the result is made yet.
    void poll(AbortPoll* poll) { poll_ = poll; }

    // What has been requested since forget_requests(), empty for nothing.
    const Zo::Image::Box& wanted() const { return wanted_; }
    void forget_requests() { wanted_ = {}; }

    const char* class_name() const override { return "ClipImage"; }
    Zo::Image::ChannelSet kept_channels() const override { return Zo::Image::kMaskNone; }

  protected:
    void _validate(bool for_real) override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;

  private:
    // The pixel's component that feeds the channel; -1 for none.
    int component(Zo::Image::Channel c) const;

    Role role_;
    AbortPoll* poll_ = nullptr;
    PixelView view_;
    Zo::Image::Box frame_;  // where the clip has pixels
    Zo::Image::Box box_;    // the operator's
    Zo::Image::Box wanted_;
};

}  // namespace veloxa::ofx
