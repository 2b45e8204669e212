// A lock whose waiters help.
#include "ZoImage/Lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

using Zo::Image::Guard;
using Zo::Image::Lock;

namespace {

TEST(Lock, WaitersTakePartInTheLoop) {
    Lock lock;
    std::mutex mutex;
    std::set<std::thread::id> workers;
    std::vector<int> times(1000, 0);
    const auto body = [&](int begin, int end) {
        for (int i = begin; i < end; ++i) ++times[static_cast<std::size_t>(i)];
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        const std::lock_guard hold(mutex);
        workers.insert(std::this_thread::get_id());
    };
    std::atomic<bool> done{false};
    const auto compute_once = [&] {
        const Guard guard(lock);
        if (done) return;
        lock.parallel_for(0, 1000, 4, body);
        done = true;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(compute_once);
    for (std::thread& thread : threads) thread.join();
    for (const int n : times) ASSERT_EQ(n, 1);
    EXPECT_GT(workers.size(), 1U);
}

TEST(Lock, ALoopInsideALoopOfAnotherLock) {
    Lock outer;
    Lock inner;
    std::atomic<int> sum{0};
    std::atomic<bool> inner_done{false};
    const auto upstream = [&] {
        const Guard guard(inner);
        if (inner_done) return;
        inner.parallel_for(0, 64, 1, [&](int b, int e) { sum += e - b; });
        inner_done = true;
    };
    std::atomic<bool> outer_done{false};
    const auto request = [&] {
        const Guard guard(outer);
        if (outer_done) return;
        outer.parallel_for(0, 64, 1, [&](int b, int e) {
            upstream();
            sum += e - b;
        });
        outer_done = true;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) threads.emplace_back(request);
    for (std::thread& thread : threads) thread.join();
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
