#include "KeptRows.h"

#include <algorithm>
#include <new>

#include "ZoImage/FramePlane.h"

namespace Zo::Image {

namespace {

constexpr std::size_t kLine = 64;
// Large planes start at page boundaries. Rows of one y in different channels, which are in use at once, are
// moved apart by this, or they would all want the same sets of the processor's cache.
constexpr std::size_t kStagger = 5 * kLine;

std::size_t row_stride(const Box& area) {
    const std::size_t pixels = static_cast<std::size_t>(area.width()) * sizeof(float);
    const std::size_t lines = (pixels + kLine - 1) / kLine;
    return RowBuffer::kHeader + lines * kLine;
}

}  // namespace

KeptRows::KeptRows(const Box& area)
    : area_(area), stride_(row_stride(area)), states_(static_cast<std::size_t>(area.height())) {}

std::size_t KeptRows::plane_bytes(const Box& area) {
    return frame_size(row_stride(area) * static_cast<std::size_t>(area.height()) + kStagger * kChannelLimit);
}

void KeptRows::add(Channel c, PlaneStore::Plane plane) {
    planes_[static_cast<std::size_t>(c)] = std::move(plane);
    channels_ += c;
}

void KeptRows::reopen() {
    for (State& s : states_) {
        const std::uint32_t finished = ChannelSet::from_bits(s.load(std::memory_order_relaxed)).bits();
        s.store(finished | finished << kClaimed, std::memory_order_relaxed);
    }
}

bool KeptRows::useless() const {
    std::uint32_t all = 0;
    for (const State& s : states_) all |= s.load(std::memory_order_relaxed);
    return all != 0 && ChannelSet::from_bits(all).empty();
}

ChannelSet KeptRows::claim(int y, ChannelSet channels) {
    channels &= channels_;
    if (channels.empty() || y < area_.y || y >= area_.t) return kMaskNone;
    const std::uint32_t before =
        state(y).fetch_or(channels.bits() << kClaimed, std::memory_order_relaxed) >> kClaimed;
    channels -= ChannelSet::from_bits(before);
    for (const Channel c : channels) new (buffer(c, y)) RowBuffer{0, 0, nullptr};
    return channels;
}

RowBuffer* KeptRows::buffer(Channel c, int y) const {
    const auto n = static_cast<std::size_t>(c);
    std::byte* row = planes_[n].get() + n * kStagger + static_cast<std::size_t>(y - area_.y) * stride_;
    return reinterpret_cast<RowBuffer*>(row);
}

void KeptRows::finish(int y, ChannelSet channels) {
    if (!channels.empty()) state(y).fetch_or(channels.bits(), std::memory_order_release);
}

}  // namespace Zo::Image
