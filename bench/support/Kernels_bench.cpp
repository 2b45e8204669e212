// Every kernel in every form that this machine can run: checked against the scalar form, then timed.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>

#include "ceilings/Ceilings.h"
#include "lanes/Lanes.h"
#include "support/Kernel.h"
#include "support/Table.h"

namespace bench {

namespace {

using Outputs = std::vector<std::vector<float>>;

// What the kernel makes of outputs that are the same before each call.
Outputs outputs_of(const Kernel& kernel, Lanes form) {
    use_lanes(form);
    Material& m = material();
    for (Plane& plane : m.out) plane.all() = m.alpha.all();
    kernel.run();
    Outputs made;
    for (const Plane& plane : m.out) made.push_back(plane.all());
    return made;
}

bool same_bits(const Outputs& a, const Outputs& b) {
    return std::equal(a.begin(), a.end(), b.begin(), [](const auto& x, const auto& y) {
        return std::memcmp(x.data(), y.data(), x.size() * sizeof(float)) == 0;
    });
}

// The least of many short runs: what disturbs a run only makes it longer.
double nanoseconds_a_pixel(const Kernel& kernel) {
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;
    constexpr double kRun = 1e-3;
    int calls = 1;
    double least = 0.0;
    for (int run = 0; run < 30;) {
        const auto start = Clock::now();
        for (int i = 0; i < calls; ++i) kernel.run();
        const double time = Seconds(Clock::now() - start).count();
        if (time < kRun / 2) {
            calls *= 2;
            continue;
        }
        const double pixel = time / calls / static_cast<double>(kSpan) * 1e9;
        least = run == 0 ? pixel : std::min(least, pixel);
        ++run;
    }
    return least;
}

void time_kernel(benchmark::State& state, const Kernel& kernel, Lanes form) {
    for (auto _ : state) {
        if (!same_bits(outputs_of(kernel, form), outputs_of(kernel, Lanes::kScalar))) {
            state.SkipWithError("differs from the scalar form");
            return;
        }
        const Counts& c = kernel.pixel;
        const double divisions = c.float_divisions + c.double_divisions;
        const double other = c.float_operations + c.double_operations + c.conversions;
        if (other == 0.0) {
            state.SkipWithError("is no loop over packs any more: its count belongs in PlainCounts.h");
            return;
        }
        use_lanes(form);
        const double time = nanoseconds_a_pixel(kernel);
        const double least = floor_nanoseconds(kernel.pixel);
        state.counters["ns a pixel"] = time;
        state.counters["floor"] = least;
        state.counters["ratio"] = time / least;
        state.counters["divisions"] = divisions;
        state.counters["other"] = other;
        state.counters["bytes"] = c.bytes;
    }
}

void register_folder(const std::string& folder, const std::vector<Kernel>& kernels) {
    for (const Kernel& kernel : kernels) {
        for (const Lanes form : kAllLanes) {
            if (!supported(form)) continue;
            const std::string name = folder + "/" + kernel.name + ", " + name_of(form);
            benchmark::RegisterBenchmark(name.c_str(), time_kernel, kernel, form)->Iterations(1);
        }
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::ceilings();
    bench::register_folder("stages", bench::stages_kernels());
    bench::register_folder("screen", bench::screen_kernels());
    bench::register_folder("framework", bench::framework_kernels());
    bench::register_folder("keyer", bench::output_kernels());
    return bench::run_table(
        argc, argv, "kernel, form",
        {{"ns a pixel", 3}, {"floor", 3}, {"ratio", 2}, {"divisions", 0}, {"other", 0}, {"bytes", 0}});
}
