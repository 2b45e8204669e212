// What keying frames took.
#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "ZoImage/Render.h"

namespace veloxa {

// Sums over the frames of a run. Each stage of the pipeline writes only its own time.
struct KeyStats {
    std::chrono::nanoseconds read{0};
    std::chrono::nanoseconds key{0};
    std::chrono::nanoseconds write{0};
    int frames = 0;               // keyed
    std::int64_t frame_rows = 0;  // of the node's box, over all of them
    std::vector<Zo::Image::OpStats> ops;

    void add(const std::vector<Zo::Image::OpStats>& frame);
};

// Adds the time from construction to destruction.
class Stopwatch {
  public:
    explicit Stopwatch(std::chrono::nanoseconds& sum) : sum_(sum) {}
    ~Stopwatch() { sum_ += std::chrono::steady_clock::now() - start_; }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

  private:
    std::chrono::nanoseconds& sum_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace veloxa
