// Shows how far a render is, on standard error: a bar when that is a terminal, else a line now and then.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace veloxa {

// What the line says after `elapsed` seconds; `done` and `total` are frames, done may be a fraction.
std::string progress_text(double done, int total, double elapsed, bool bar);

class Progress {
  public:
    Progress(int frames, bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // One of the `rows` of the frame that is being rendered; any thread.
    void row_done(int rows) {
        parts_.fetch_add(kPartsPerFrame / (rows > 0 ? rows : 1), std::memory_order_relaxed);
    }
    // A frame is finished, rendered or not.
    void frame_done();

  private:
    static constexpr long long kPartsPerFrame = 1LL << 32;

    void tick(const std::stop_token& stop);
    void show(double elapsed) const;

    const int frames_;
    const bool terminal_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    std::atomic<int> done_{0};
    std::atomic<long long> parts_{0};  // rows of frames that are rendered, as parts of a frame
    std::mutex mutex_;
    std::condition_variable_any woken_;
    std::jthread ticker_;  // last: it uses the members above
};

}  // namespace veloxa
