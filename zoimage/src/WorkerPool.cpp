#include "WorkerPool.h"

#include <algorithm>

namespace Zo::Image {

WorkerPool::WorkerPool(int threads) {
    for (int index = 1; index < threads; ++index) {
        workers_.emplace_back([this, index] { wait_for_work(index); });
    }
}

WorkerPool::~WorkerPool() {
    {
        const std::lock_guard hold(mutex_);
        quit_ = true;
    }
    changed_.notify_all();
    for (std::thread& worker : workers_) worker.join();
}

void WorkerPool::run(int count, const std::function<void(int)>& job) {
    count = std::clamp(count, 1, threads());
    {
        const std::lock_guard hold(mutex_);
        job_ = &job;
        count_ = count;
        running_ = count - 1;
        ++round_;
    }
    if (count > 1) changed_.notify_all();
    job(0);
    std::unique_lock hold(mutex_);
    changed_.wait(hold, [this] { return running_ == 0; });
    job_ = nullptr;
}

void WorkerPool::wait_for_work(int index) {
    std::uint64_t seen = 0;
    std::unique_lock hold(mutex_);
    for (;;) {
        changed_.wait(hold, [&] { return quit_ || round_ != seen; });
        if (quit_) return;
        seen = round_;
        if (index >= count_ || job_ == nullptr) continue;
        const std::function<void(int)>& job = *job_;
        hold.unlock();
        job(index);
        hold.lock();
        if (--running_ == 0) changed_.notify_all();
    }
}

}  // namespace Zo::Image
