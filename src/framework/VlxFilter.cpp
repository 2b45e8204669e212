#include "framework/VlxFilter.h"

using namespace Zo::Image;

void VlxFilter::release_buffers() {
    for (FramePlane<float>& plane : frame_) plane.clear();
}

void VlxFilter::forget_frame() {
    done_.store(false, std::memory_order_relaxed);
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

bool VlxFilter::ensure_frame() {
    if (done_.load(std::memory_order_acquire)) return true;
    const Guard guard(lock_);
    if (done_.load(std::memory_order_relaxed)) return true;
    if (!compute_frame(lock_)) return false;
    done_.store(true, std::memory_order_release);
    return true;
}

void VlxFilter::engine(int y, int x, int /*r*/, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(own_channels_) || !is_active()) {
        row.get(input(0), y, channels);
        return;
    }
    if (!ensure_frame() || aborted()) return;
    row.get(input(0), y, channels - own_channels_);
    const Box& box = info_.box;
    const std::size_t at = static_cast<std::size_t>(box.width()) * static_cast<std::size_t>(y - box.y) +
                           static_cast<std::size_t>(x - box.x);
    for (const Channel c : own_channels_) row.refer(c, frame(c).data() + at);
}

bool VlxFilter::run_kernel(Lock& lock, const std::function<void(const ParallelLoop&)>& kernel) const {
    std::atomic<bool> skipped{false};
    kernel([&](int begin, int end, int grain, const Lock::Body& body) {
        lock.parallel_for(begin, end, grain, [&](int from, int to) {
            if (skipped.load(std::memory_order_relaxed) || aborted()) {
                skipped.store(true, std::memory_order_relaxed);
            } else {
                body(from, to);
            }
        });
    });
    return !skipped.load(std::memory_order_relaxed);
}
