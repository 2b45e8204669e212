// A lock whose waiters help.
#include "ZoImage/Lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

using Zo::Image::Guard;
using Zo::Image::Lock;

namespace {

// Runs on several threads at once.
void together(int count, const std::function<void()>& work) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back(work);
}

// What the first thread computes under its lock, in a loop that those who wait for it help with.
struct Once {
    Lock lock;
    std::atomic<bool> done{false};

    void compute(int end, int grain, const Lock::Body& body) {
        const Guard guard(lock);
        if (done) return;
        lock.parallel_for(0, end, grain, body);
        done = true;
    }
};

TEST(Lock, WaitersTakePartInTheLoop) {
    std::mutex mutex;
    std::set<std::thread::id> workers;
    std::vector<int> times(1000, 0);
    Once once;
    together(4, [&] {
        once.compute(1000, 4, [&](int begin, int end) {
            for (int i = begin; i < end; ++i) ++times[static_cast<std::size_t>(i)];
            std::this_thread::sleep_for(std::chrono::microseconds(200));
            const std::lock_guard hold(mutex);
            workers.insert(std::this_thread::get_id());
        });
    });
    EXPECT_EQ(times, std::vector<int>(1000, 1));
    EXPECT_GT(workers.size(), 1U);
}

TEST(Lock, ALoopInsideALoopOfAnotherLock) {
    Once outer, inner;
    std::atomic<int> sum{0};
    const auto add = [&](int b, int e) { sum += e - b; };
    together(3, [&] {
        outer.compute(64, 1, [&](int b, int e) {
            inner.compute(64, 1, add);
            add(b, e);
        });
    });
    EXPECT_EQ(sum, 128);
}

TEST(Lock, AnExceptionEndsTheLoopAndFreesTheLock) {
    Lock lock;
    std::atomic<int> pieces{0};
    {
        const Guard guard(lock);
        EXPECT_THROW(lock.parallel_for(0, 1000, 1,
                                       [&](int b, int) {
                                           ++pieces;
                                           if (b == 5) throw std::runtime_error("stop");
                                       }),
                     std::runtime_error);
    }
    EXPECT_LT(pieces, 1000);
    const Guard again(lock);
}

}  // namespace
