// Asks the host whether a render is still wanted, and raises the engine's flag when it is not.
//
// The host is asked by one thread only: the one that called begin() or adopt() last.
#pragma once

#include <atomic>
#include <thread>

#include "ZoImage/Render.h"
#include "host/Host.h"

namespace veloxa::ofx {

class AbortPoll {
  public:
    // Lowers the flag. Not during a render.
    void begin(OfxImageEffectHandle instance) {
        instance_ = instance;
        flag_.clear();
        adopt();
    }
    void adopt() { thread_.store(std::this_thread::get_id(), std::memory_order_relaxed); }
    // Any thread, as often as every row.
    void poll() {
        if (flag_.raised() || thread_.load(std::memory_order_relaxed) != std::this_thread::get_id()) return;
        if (suites().effect->abort(instance_) != 0) flag_.raise();
    }

    const Zo::Image::AbortFlag& flag() const { return flag_; }

  private:
    OfxImageEffectHandle instance_ = nullptr;
    std::atomic<std::thread::id> thread_;
    Zo::Image::AbortFlag flag_;
};

}  // namespace veloxa::ofx
