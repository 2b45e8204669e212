// Shows how far a render is, on standard error: a bar when that is a terminal, else a line now and then.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace veloxa {

class Progress {
  public:
    explicit Progress(bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // So many frames, rows as parts of one, are done of so many, 0 where nobody knows; any
    // thread.
    void update(double done, int frames) {
        done_ = done;
        frames_ = frames;
    }

  private:
    void tick(const std::stop_token& stop);

    const bool terminal_;
    std::atomic<double> done_{0.0};
    std::atomic<int> frames_{-1};
    std::mutex mutex_;
    std::condition_variable_any woken_;
    std::jthread ticker_;  // last: it uses the members above
};

}  // namespace veloxa
