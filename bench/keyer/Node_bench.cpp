// Whole frames through the node, in memory: each configuration at two sizes, on one thread and on two.
#include <map>
#include <string>

#include "keyer/NodeFloor.h"
#include "keyer/NodeRig.h"
#include "lanes/Lanes.h"
#include "support/Table.h"

namespace bench {

namespace {

struct Size {
    int width, height;
};
constexpr Size kSizes[]{{1920, 1080}, {4096, 2160}};
constexpr Size kSmall{480, 270};
constexpr double kMilli = 1e3;

const Plate& plate_of(const Size& size) {
    static std::map<int, Plate> plates;
    const auto [at, is_new] = plates.try_emplace(size.width);
    if (is_new) at->second = make_plate(size.width, size.height);
    return at->second;
}

std::uint64_t checksum_of(const Configuration& configuration, Lanes form, int threads) {
    const Lanes in_use = lanes_in_use();
    use_lanes(form);
    NodeRig rig(plate_of(kSmall), configuration, threads);
    rig.key_next_frame();
    use_lanes(in_use);
    return rig.checksum();
}

void key(benchmark::State& state, const Configuration& configuration, const Size& size) {
    for (auto _ : state) {
        if (checksum_of(configuration, lanes_in_use(), 2) != checksum_of(configuration, Lanes::kScalar, 1)) {
            state.SkipWithError("differs from the scalar form on one thread");
            return;
        }
        double alone = 0.0;
        for (const int threads : {1, 2}) {
            NodeRig rig(plate_of(size), configuration, threads);
            const Timing time = time_calls([&] { rig.key_next_frame(); }, 5, 0.5);
            const double floor =
                node_floor(configuration.name, rig.backing_share(), threads) * rig.pixels() * 1e-9;
            const std::string suffix = threads == 1 ? ", 1 thread" : ", 2 threads";
            state.counters["ms" + suffix] = time.median * kMilli;
            state.counters["least" + suffix] = time.least * kMilli;
            state.counters["floor" + suffix] = floor * kMilli;
            state.counters["ratio" + suffix] = time.least / floor;
            if (threads == 1) {
                alone = time.median;
                state.counters["processor ms"] = time.processor * kMilli;
            } else {
                state.counters["gain"] = alone / time.median;
            }
        }
    }
}

void register_benchmarks() {
    for (const Size& size : kSizes) {
        for (const Configuration& configuration : kConfigurations) {
            const std::string name = std::string(configuration.name) + ", " + std::to_string(size.width) +
                                     " x " + std::to_string(size.height);
            benchmark::RegisterBenchmark(name.c_str(), key, configuration, size)->Iterations(1);
        }
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::register_benchmarks();
    std::vector<bench::Column> columns{{"processor ms", 1}};
    for (const char* suffix : {", 1 thread", ", 2 threads"}) {
        for (const char* counter : {"ms", "least", "floor"}) {
            columns.push_back({std::string(counter) + suffix, 1});
        }
        columns.push_back({std::string("ratio") + suffix, 2});
    }
    columns.push_back({"gain", 2});
    return bench::run_table(argc, argv, "one frame", columns);
}
