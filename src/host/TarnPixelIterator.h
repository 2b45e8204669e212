// A cursor over one row of the host. Positions are columns of the image, so a row over [x, r) is walked
// from set_position(x, y) on; y is of no account.
//
// A channel outside the given set is not bound: it reads as 0 and writes to it go nowhere, as do writes
// through a read-only cursor. Binding for writing gives the row storage of its own, so of two cursors over
// one row the writing one must be made first.
#pragma once

#include <array>

#include "ZoImage/Row.h"
#include "framework/vlxPixelIterator.h"

class TarnPixelIterator final : public vlxPixelIterator {
  public:
    TarnPixelIterator(Zo::Image::Row& row, Zo::Image::ChannelSet channels, bool read_only);
    TarnPixelIterator(Zo::Image::Row& row, bool read_only)
        : TarnPixelIterator(row, Zo::Image::kMaskRgba, read_only) {}

    void set_position(std::int32_t x, std::int32_t y) override;
    void set_row(std::int32_t y) override { set_position(0, y); }
    // Not supported, a cursor covers one row: writes a line to standard output and does nothing.
    void next_row() override;
    float get(int channel) const override;
    void set(int channel, float value) override;
    void next_pixel() override { ++position_; }

  private:
    std::size_t offset() const { return position_ - origin_; }

    std::uint32_t position_ = 0;
    std::uint32_t stride_ = 0;
    std::uint32_t origin_;  // the row's first column, where the channel pointers point
    std::array<const float*, 4> read_{};
    std::array<float*, 4> write_{};
};
