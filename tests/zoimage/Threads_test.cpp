// Locks whose waiters help, and rendering on threads that somebody else provides, in whatever way they run
// the jobs.
#include <gtest/gtest.h>

#include <mutex>
#include <set>
#include <thread>

#include "ZoImage/GeneralTile.h"
#include "ZoImage/Lock.h"
#include "support/TestImages.h"

using namespace Zo::Image;

namespace {

using Jobs = std::function<void(int count, const std::function<void(int)>& job)>;

class Threads final : public ThreadSource {
  public:
    Threads(int threads, Jobs jobs) : threads_(threads), jobs_(std::move(jobs)) {}
    int threads() const override { return threads_; }
    void run(int count, const std::function<void(int)>& job) override {
        ++runs;
        jobs_(count, job);
    }
    int runs = 0;

  private:
    int threads_;
    Jobs jobs_;
};

void one_after_another(int count, const std::function<void(int)>& job) {
    for (int i = 0; i < count; ++i) job(i);
}

void new_threads(int count, const std::function<void(int)>& job) {
    std::vector<std::jthread> threads;
    for (int i = 0; i < count; ++i) threads.emplace_back([&job, i] { job(i); });
}

constexpr Box kBox{-3, 5, 30, 405};

// Adds up each column of its input before it has a row, in a loop that waiting threads help with.
class ColumnSums final : public Iop {
  public:
    explicit ColumnSums(Op* source) : Iop(NodeContext{}) {
        inputs(1);
        set_input(0, source);
    }
    const char* class_name() const override { return "ColumnSums"; }

  protected:
    void _request(int x, int, int r, int, ChannelSet channels, int count) override {
        input(0).request(x, kBox.y, r, kBox.t, channels, count);
    }
    void engine(int, int x, int r, const ChannelSet& channels, Row& row) override {
        {
            const Guard guard(lock_);
            if (sums_.empty()) {
                std::mutex mutex;
                std::vector<float> sums(static_cast<std::size_t>(r - x));
                const RowSource from{&input(0), kRed};
                fetch_rows(
                    {&from, 1}, {x, kBox.y, r, kBox.t}, &lock_, [&](std::size_t, int, const Row& input_row) {
                        const std::lock_guard hold(mutex);
                        std::transform(sums.begin(), sums.end(), input_row[kRed], sums.begin(), std::plus());
                    });
                sums_ = std::move(sums);
            }
        }
        for (const Channel c : channels) std::copy(sums_.begin(), sums_.end(), row.overwrite(c));
    }

  private:
    Lock lock_;
    std::vector<float> sums_;
};

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
    new_threads(4, [&](int) {
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
    new_threads(3, [&](int) {
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
    const auto stop = [&](int b, int) {
        ++pieces;
        if (b == 5) throw b;
    };
    {
        const Guard guard(lock);
        EXPECT_THROW(lock.parallel_for(0, 1000, 1, stop), int);
    }
    EXPECT_LT(pieces, 1000);
    const Guard again(lock);
}

TEST(ThreadSource, EveryRowOnceHoweverJobsRun) {
    const Jobs none = [](int, const auto&) {};
    const Jobs first_alone = [](int, const auto& job) { job(0); };
    const Jobs twice_last_first = [](int count, const auto& job) {
        for (int i = 2 * count - 1; i >= 0; --i) job(i % count);
    };
    // How often the source is asked: not at all for a single thread.
    const struct {
        int threads;
        Jobs jobs;
        int runs;
    } sources[] = {
        {4, one_after_another, 1}, {4, twice_last_first, 1},     {4, first_alone, 1}, {4, none, 1},
        {4, new_threads, 1},       {5000, one_after_another, 1}, {1, none, 0},        {0, none, 0}};
    for (const auto& given : sources) {
        SCOPED_TRACE(&given - sources);
        test::FunctionSource source(kBox, kMaskRgba,
                                    [](Channel, int x, int y) { return static_cast<float>(x + y); });
        ColumnSums sums(&source);
        Threads threads(given.threads, given.jobs);
        Renderer renderer(threads);
        EXPECT_EQ(renderer.threads(), std::max(1, given.threads));
        std::array<std::atomic<int>, 400> times{};
        std::atomic<int> wrong{0};
        ASSERT_TRUE(renderer.render(sums, kBox, kMaskAlpha, [&](int y, const Row& row) {
            ++times[static_cast<std::size_t>(y - kBox.y)];
            // 400 rows, y from 5 to 404.
            for (int x = kBox.x; x < kBox.r; ++x) {
                wrong += row[kAlpha][x - kBox.x] != static_cast<float>(400 * x + 81800);
            }
        }));
        for (const auto& n : times) ASSERT_EQ(n, 1);
        EXPECT_EQ(wrong, 0);
        EXPECT_EQ(threads.runs, given.runs);
    }
}

TEST(ThreadSource, AbortAndExceptionsComeThrough) {
    for (const auto& jobs : {Jobs(one_after_another), Jobs(new_threads)}) {
        Threads threads(3, jobs);
        AbortFlag abort;
        test::FunctionSource source(kBox, kMaskRgba, [](Channel, int, int) { return 0.0f; });
        Renderer renderer(threads, &abort);
        EXPECT_FALSE(renderer.render(source, kBox, kMaskRgba, [&](int, const Row&) { abort.raise(); }));
        abort.clear();
        EXPECT_THROW(renderer.render(source, kBox, kMaskRgba, [](int, const Row&) { throw 1; }), int);
        EXPECT_TRUE(renderer.render(source, kBox, kMaskRgba, [](int, const Row&) {}));
    }
}

// Threads with graphs of their own have nothing in common but the image that stands in for missing inputs.
TEST(ThreadSource, GraphsOnSeveralThreads) {
    std::atomic<int> wrong{0};
    new_threads(4, [&](int thread) {
        for (int round = 0; round < 60; ++round) {
            test::FunctionSource source({0, 0, 8, 4}, kMaskRgba,
                                        [&](Channel, int, int) { return static_cast<float>(thread); });
            ColumnSums open(nullptr);
            open.set_input(0, open.default_input(0));
            wrong += test::render(open, {0, 0, 8, 4}).at(kAlpha, 3, 2) != 0.0f;
            open.set_input(0, &source);
            // Rows beyond the source's box repeat the nearest.
            wrong += test::render(open, {0, 0, 8, 4}).at(kAlpha, 3, 2) != static_cast<float>(400 * thread);
        }
    });
    EXPECT_EQ(wrong, 0);
}

}  // namespace
