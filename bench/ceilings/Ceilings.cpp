#include "ceilings/Ceilings.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "ceilings/CeilingLoops.h"

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// The best of some runs: what disturbs a run only makes it slower.
template <class Run>
double best_rate(const Run& run) {
    double best = 0.0;
    for (int i = 0; i < 40; ++i) {
        const auto start = Clock::now();
        const double done = run();
        best = std::max(best, done / seconds_since(start));
    }
    return best;
}

double rate_of(const LaneKernel<CeilingLoop>& loop) {
    double seed = 0.75;
    return best_rate([&] { return loop(60000, &seed); });
}

double cached_rate() {
    constexpr std::size_t kFloats = 16 * 1024;
    std::vector<float> from(kFloats, 1.0f);
    std::vector<float> to(kFloats);
    return best_rate([&] {
        double bytes = 0.0;
        for (int i = 0; i < 100; ++i) bytes += negate_plane(from.data(), to.data(), kFloats);
        return bytes;
    });
}

double copy_rate() {
    constexpr std::size_t kFloats = 16 * 1024 * 1024;  // a thread; no cache holds that
    const unsigned threads = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::unique_ptr<float[]>> planes;
    for (unsigned i = 0; i < 2 * threads; ++i) planes.push_back(std::make_unique<float[]>(kFloats));
    return best_rate([&] {
        {
            std::vector<std::jthread> workers;
            for (unsigned i = 0; i < threads; ++i) {
                workers.emplace_back([&, i] {
                    std::memcpy(planes[2 * i].get(), planes[2 * i + 1].get(), kFloats * sizeof(float));
                });
            }
        }
        return 2.0 * threads * sizeof(float) * static_cast<double>(kFloats);
    });
}

Ceilings measure() {
    return {rate_of(divide_floats),
            rate_of(divide_doubles),
            rate_of(multiply_add_floats),
            rate_of(multiply_add_doubles),
            rate_of(convert),
            cached_rate(),
            copy_rate()};
}

}  // namespace

const Ceilings& ceilings() {
    static const Ceilings measured = measure();
    return measured;
}

double floor_nanoseconds(const Counts& pixel) {
    const Ceilings& most = ceilings();
    const double arithmetic = pixel.float_divisions / most.float_divisions +
                              pixel.double_divisions / most.double_divisions +
                              pixel.float_operations / most.float_multiply_adds +
                              (pixel.double_operations + pixel.conversions) / most.double_multiply_adds;
    return std::max(arithmetic, pixel.bytes / most.cached_bytes) * 1e9;
}

}  // namespace bench
