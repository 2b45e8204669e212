// One span of one row of an image: a pointer to floats per channel.
//
// A row covers the columns x() <= column < r(). Every pointer that it hands out points at column x().
// Channels that were fetched are shared with the operator that produced them, without a copy; channels
// that are written belong to this row alone. A channel that is not present reads as 0.
//
// A row belongs to the thread that made it and, in a render, to the job that it was made in. Its memory comes
// from a pool that the job has to itself, so making rows costs no allocation once a render is under way.
#pragma once

#include <array>
#include <cstddef>
#include <utility>

#include "ZoImage/ChannelSet.h"

namespace Zo::Image {

class Iop;
struct RowBuffer;

class Row {
  public:
    Row() = default;
    Row(int x, int r) : x_(x), r_(r) {}
    Row(Row&& other) noexcept { *this = std::move(other); }
    Row& operator=(Row&& other) noexcept;
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;
    ~Row() { clear(present_); }

    int x() const { return x_; }
    int r() const { return r_; }
    std::size_t width() const { return static_cast<std::size_t>(r_ - x_); }

    // Fetches `channels` of row y of the source over this row's span; beyond the source's box its nearest
    // edge pixels repeat. Other channels of this row stay as they are. When the render is aborted some
    // channels may stay absent.
    void get(Iop& source, int y, ChannelSet channels);

    // The channels that are present: fetched, written or shared.
    ChannelSet channels() const { return present_; }

    // Pixels of a channel; zeros when it is absent.
    const float* operator[](Channel c) const { return present_.has(c) ? slot(c).pixels : zeros(); }

    // Own storage of a channel for writing; keeps the values that the channel had.
    float* writable(Channel c);
    // Own storage of a channel for writing every pixel; its values are undefined until written.
    float* overwrite(Channel c);

    // Uses pixels that someone else keeps alive and unchanged until the render ends.
    void refer(Channel c, const float* pixels);
    // Makes the channel present with every pixel 0.
    void set_zero(Channel c);
    // Shares channels with a row whose span covers this one's; channels absent there become absent here.
    void share(const Row& other, ChannelSet channels);
    // Forgets channels.
    void clear(ChannelSet channels);

  private:
    friend class RowPath;

    // Memory to write a channel to, by channel number, null for the pool's: rows that are kept are written
    // where they stay.
    using Places = std::array<RowBuffer*, kChannelLimit>;
    RowBuffer* storage_for(Channel c);
    // Whether the pixels of a present channel are in a pool's or a kept row's memory, which goes when the
    // rows that use it go; and whether the channel is present and this row alone uses them.
    bool counted(Channel c) const { return slot(c).buffer != nullptr; }
    bool sole(Channel c) const;

    struct Slot {
        RowBuffer* buffer;  // null for pixels that the row only refers to
        const float* pixels;
    };
    Slot& slot(Channel c) { return slots_[static_cast<std::size_t>(c)]; }
    const Slot& slot(Channel c) const { return slots_[static_cast<std::size_t>(c)]; }
    const float* zeros() const;
    void set(Channel c, RowBuffer* buffer, const float* pixels);

    int x_ = 0;
    int r_ = 0;
    ChannelSet present_;
    const Places* places_ = nullptr;
    std::array<Slot, kChannelLimit> slots_;  // only the present ones are initialised
};

}  // namespace Zo::Image
