#include "framework/FrameOnce.h"

using namespace Zo::Image;

bool FrameOnce::ensure(const std::function<bool(Lock& lock)>& make) {
    if (done_.load(std::memory_order_acquire)) return true;
    const Guard guard(lock_);
    if (done_.load(std::memory_order_relaxed)) return true;
    if (!make(lock_)) return false;
    done_.store(true, std::memory_order_release);
    return true;
}

namespace {

struct LeftOut {};

}  // namespace

bool run_kernel(const Op& op, Lock& lock, const std::function<void(const ParallelLoop&)>& kernel) try {
    std::atomic<bool> skipped{false};
    kernel([&](int begin, int end, int grain, const Lock::Body& body) {
        lock.parallel_for(begin, end, grain, [&](int from, int to) {
            if (skipped.load(std::memory_order_relaxed) || op.aborted()) {
                skipped.store(true, std::memory_order_relaxed);
            } else {
                body(from, to);
            }
        });
        if (skipped.load(std::memory_order_relaxed)) throw LeftOut();
    });
    return true;
} catch (const LeftOut&) {
    return false;
}
