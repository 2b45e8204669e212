// A result that is made once for a frame, by whichever thread needs it first; threads that come meanwhile
// help with its loops and then find it done.
//
// Any thread may ask for it during a render. forget() is for validation and close, when no render runs.
#pragma once

#include <atomic>
#include <functional>

#include "ZoImage/Lock.h"
#include "ZoImage/Op.h"
#include "framework/ParallelLoop.h"

class FrameOnce {
  public:
    // Calls `make` under the lock unless it was made; a making that fails is tried again by the next who
    // asks. False when it failed.
    bool ensure(const std::function<bool(Zo::Image::Lock& lock)>& make);
    void forget() { done_.store(false, std::memory_order_relaxed); }

  private:
    Zo::Image::Lock lock_;
    std::atomic<bool> done_{false};
};

// Gives a kernel a loop that the threads waiting for the lock share. Once the operator's render is aborted
// the loop leaves out its pieces and ends the kernel, which would read what they did not write. False when it
// did.
bool run_kernel(const Zo::Image::Op& op, Zo::Image::Lock& lock,
                const std::function<void(const ParallelLoop&)>& kernel);
