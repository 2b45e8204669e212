#include "AbortPoll.h"

#include "Host.h"

namespace veloxa::ofx {

void AbortPoll::begin(OfxImageEffectHandle instance) {
    instance_ = instance;
    flag_.clear();
    adopt();
}

void AbortPoll::poll() {
    if (flag_.raised() || thread_.load(std::memory_order_relaxed) != std::this_thread::get_id()) return;
    if (suites().effect->abort(instance_) != 0) flag_.raise();
}

}  // namespace veloxa::ofx
