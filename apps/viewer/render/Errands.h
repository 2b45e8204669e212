// Work that the window does not wait for, one piece after another on a thread of its own.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "ZoImage/Render.h"

namespace veloxa::viewer {

class Errands {
  public:
    // Gives up soon after the flag is raised, and does not throw.
    using Work = std::function<void(const Zo::Image::AbortFlag& abort)>;

    // `beside` runs at the lowest priority.
    explicit Errands(bool beside = false);
    // Gives up what is under way, leaves out what waits, and waits.
    ~Errands();
    Errands(const Errands&) = delete;
    Errands& operator=(const Errands&) = delete;

    // Any thread; returns at once.
    void add(Work work);
    // Gives up what is under way and leaves out what waits; returns how many pieces that were.
    std::size_t give_up();

  private:
    void run();

    const bool beside_;
    Zo::Image::AbortFlag abort_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Work> waiting_;
    bool ending_ = false;
    std::thread thread_;
};

}  // namespace veloxa::viewer
