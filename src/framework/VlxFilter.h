// Base of the operators that need their whole input before any output row exists.
//
// The first row that is asked for computes the frame, once, under a lock; threads that come meanwhile help
// with its loops and then find it done. Rows are served from the frame without a copy. It covers the
// operator's box, row-major from its bottom row, and stays as it is until the next validation or close; a
// computation that fails leaves the row unwritten, and the next row tries again.
// Channels outside the operator's own ones pass through from input 0.
#pragma once

#include <array>

#include "ZoImage/FramePlane.h"
#include "framework/FrameOnce.h"
#include "framework/VlxIop.h"

class VlxFilter : public VlxIop {
  public:
    VlxFilter(const NodeContext& context, const ControlBlock* controls, Description description,
              ChannelSet own_channels)
        : VlxIop(context, controls, std::move(description)), own_channels_(own_channels) {}

    // The frame is kept as it is.
    Zo::Image::ChannelSet kept_channels() const override { return Zo::Image::kMaskNone; }

  protected:
    // Empties the frame; its memory is kept for the next one.
    virtual void release_buffers();
    // Fills the frame of every own channel. False when it could not (aborted). Called under the lock.
    virtual bool compute_frame(Zo::Image::Lock& lock) = 0;
    // False when the controls make the operator an identity.
    virtual bool is_active() const { return true; }

    Zo::Image::ChannelSet own_channels() const { return own_channels_; }
    Zo::Image::FramePlane<float>& frame(Zo::Image::Channel c) {
        return frame_[static_cast<std::size_t>(c - Zo::Image::kRed)];
    }

    void _validate(bool for_real) override;
    void _close() override;
    void _request(int x, int y, int r, int t, Zo::Image::ChannelSet channels, int count) override;
    void engine(int y, int x, int r, const Zo::Image::ChannelSet& channels, Zo::Image::Row& row) override;

  private:
    void forget_frame();

    FrameOnce once_;
    std::array<Zo::Image::FramePlane<float>, 4> frame_;
    Zo::Image::ChannelSet own_channels_;
};
