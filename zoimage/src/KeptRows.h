// The kept rows of one operator: a plane for each channel, and for each row what of it is there.
//
// A row is written by the one thread that claimed it and read by any once it is finished; both are single
// atomic steps. Rows keep their place as long as the object lives.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "BufferPool.h"
#include "PlaneStore.h"
#include "ZoImage/Box.h"
#include "ZoImage/ChannelSet.h"

namespace Zo::Image {

class KeptRows {
  public:
    explicit KeptRows(const Box& area);

    const Box& area() const { return area_; }
    ChannelSet channels() const { return channels_; }
    static std::size_t plane_bytes(const Box& area);

    // Between renders: another channel's plane, and forgetting what was claimed and not finished.
    void add(Channel c, PlaneStore::Plane plane);
    void reopen();
    // True when rows were claimed and none ever finished.
    bool useless() const;

    // The channels of row y that are there.
    ChannelSet finished(int y) const {
        if (y < area_.y || y >= area_.t) return kMaskNone;
        return ChannelSet::from_bits(state(y).load(std::memory_order_acquire));
    }
    // Channels that the operator does not claim to change and was seen to hand on as they came. Beside kept
    // channels they come straight from its input; an operator that changes more than it says is still asked.
    ChannelSet handed_on() const { return ChannelSet::from_bits(handed_on_.load(std::memory_order_relaxed)); }
    void note_handed_on(ChannelSet channels) {
        if (!handed_on().contains(channels)) {
            handed_on_.fetch_or(channels.bits(), std::memory_order_relaxed);
        }
    }
    // A finished channel's pixels from column area().x on.
    const float* pixels(Channel c, int y) const { return buffer(c, y)->data(); }

    // Those of `channels` that the caller, and nobody else, may write into row y, which it has whole.
    ChannelSet claim(int y, ChannelSet channels);
    // Where to write a claimed channel. It starts without references.
    RowBuffer* buffer(Channel c, int y) const;
    // Lets everyone read claimed channels.
    void finish(int y, ChannelSet channels);

  private:
    // Finished channels in the low half, claimed ones in the high half.
    using State = std::atomic<std::uint32_t>;
    static constexpr unsigned kClaimed = 16;
    static_assert(kChannelLimit <= kClaimed);
    State& state(int y) { return states_[static_cast<std::size_t>(y - area_.y)]; }
    const State& state(int y) const { return states_[static_cast<std::size_t>(y - area_.y)]; }

    Box area_;
    ChannelSet channels_;
    std::atomic<std::uint32_t> handed_on_{0};
    std::size_t stride_;
    std::vector<State> states_;
    std::array<PlaneStore::Plane, kChannelLimit> planes_;
};

}  // namespace Zo::Image
