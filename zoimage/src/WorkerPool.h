// Threads that wait for work between renders.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "ZoImage/Render.h"

namespace Zo::Image {

class WorkerPool final : public ThreadSource {
  public:
    // `threads` counts the caller of run() too, so one fewer is started.
    explicit WorkerPool(int threads);
    ~WorkerPool() override;
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    int threads() const override { return static_cast<int>(workers_.size()) + 1; }

    // Calls job(0) on this thread and job(1) to job(count - 1) on workers at once; returns when all have
    // returned. `count` is at most threads(). A job must not throw.
    void run(int count, const std::function<void(int)>& job) override;

  private:
    void wait_for_work(int index);

    std::mutex mutex_;
    std::condition_variable changed_;
    const std::function<void(int)>* job_ = nullptr;
    int count_ = 0;
    std::uint64_t round_ = 0;
    int running_ = 0;
    bool quit_ = false;
    std::vector<std::thread> workers_;
};

}  // namespace Zo::Image
