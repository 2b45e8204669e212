#include "framework/VlxFilter.h"

using namespace Zo::Image;

void VlxFilter::release_buffers() {
    for (FramePlane<float>& plane : frame_) plane.clear();
}

void VlxFilter::forget_frame() {
    once_.forget();
    release_buffers();
}

void VlxFilter::_validate(bool /*for_real*/) {
    validate_writing(own_channels_, own_channels_);
    forget_frame();
}

void VlxFilter::_close() {
    forget_frame();
    VlxIop::_close();
}

void VlxFilter::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    // Channels that pass through are read as far as the reader looks, beyond the frame's edges too.
    Box area{x, y, r, t};
    if (is_active()) {
        area.merge(info_.box);
        const auto plane = static_cast<std::size_t>(info_.box.width()) *
                           static_cast<std::size_t>(info_.box.height()) * sizeof(float);
        hold(static_cast<std::size_t>(own_channels_.size()) * frame_size(plane));
    }
    input(0).request(area.x, area.y, area.r, area.t, channels + own_channels_, count);
}

void VlxFilter::engine(int y, int x, int /*r*/, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(own_channels_) || !is_active()) {
        row.get(input(0), y, channels);
        return;
    }
    if (!once_.ensure([this](Lock& lock) { return compute_frame(lock); }) || aborted()) return;
    row.get(input(0), y, channels - own_channels_);
    const Box& box = info_.box;
    const std::size_t at = static_cast<std::size_t>(box.width()) * static_cast<std::size_t>(y - box.y) +
                           static_cast<std::size_t>(x - box.x);
    for (const Channel c : own_channels_) row.refer(c, frame(c).data() + at);
}
