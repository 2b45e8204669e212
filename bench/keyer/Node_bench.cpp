// Whole frames through the node, in memory: each configuration at two sizes, on one thread and on two.
#include <map>
#include <string>

#include "keyer/NodeRig.h"
#include "support/Table.h"

namespace bench {

namespace {

struct Size {
    int width, height;
};
constexpr Size kSizes[]{{1920, 1080}, {4096, 2160}};
constexpr double kMilli = 1e3;

std::string text_of(const Size& size) {
    return std::to_string(size.width) + " x " + std::to_string(size.height);
}

const Plate& plate_of(const Size& size) {
    static std::map<int, Plate> plates;
    const auto [at, is_new] = plates.try_emplace(size.width);
    if (is_new) at->second = make_plate(size.width, size.height);
    return at->second;
}

void key(benchmark::State& state, const Configuration& configuration, const Size& size) {
    for (auto _ : state) {
        double alone = 0.0;
        for (const int threads : {1, 2}) {
            NodeRig rig(plate_of(size), configuration, threads);
            const Timing time = time_calls([&] { rig.key_next_frame(); }, 5, 1.0);
            const std::string suffix = threads == 1 ? ", 1 thread" : ", 2 threads";
            state.counters["ms" + suffix] = time.median * kMilli;
            state.counters["least" + suffix] = time.least * kMilli;
            if (threads == 1) alone = time.median;
            if (threads == 2) state.counters["gain"] = alone / time.median;
        }
    }
}

void register_benchmarks() {
    for (const Size& size : kSizes) {
        for (const Configuration& configuration : kConfigurations) {
            const std::string name = std::string(configuration.name) + ", " + text_of(size);
            benchmark::RegisterBenchmark(name.c_str(), key, configuration, size)->Iterations(1);
        }
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::register_benchmarks();
    return bench::run_table(argc, argv, "one frame",
                            {{"ms, 1 thread", 1},
                             {"least, 1 thread", 1},
                             {"ms, 2 threads", 1},
                             {"least, 2 threads", 1},
                             {"gain", 2}});
}
