// What a stroke waits for: every analysis with a full list of samples, and with all that a session can hold.
#include <algorithm>
#include <vector>

#include "lanes/Lanes.h"
#include "support/Table.h"
#include "tools/Samples.h"

namespace bench {

namespace {

// As far as pictures can tell them apart.
bool same(const SampledNode& node, const Tuning& a, const Tuning& b) {
    TrialControls controls(node.setting());
    const auto values = [&](const Tuning& tuning) {
        std::vector<std::int32_t> stored;
        const ControlBlock& block = controls.with(tuning.knobs);
        for (int i = 0; i < ControlBlock::kCount; ++i) stored.push_back(block.stored(i));
        return stored;
    };
    return a.misses == b.misses && values(a) == values(b);
}

void solve(benchmark::State& state, const Solver& solver) {
    for (auto _ : state) {
        SampledNode node(solver.clean_plate);
        const Tuning found = solver.run(node.setting());
        const Lanes form = lanes_in_use();
        use_lanes(Lanes::kScalar);
        const bool right = same(node, found, solver.run(node.setting()));
        use_lanes(form);
        if (!right) {
            state.SkipWithError("differs from the scalar form");
            return;
        }
        const Timing time = time_calls([&] { solver.run(node.setting()); }, 5, 0.2);
        node.adopt(found.knobs);
        if (!same(node, found, solver.run(node.setting()))) {
            state.SkipWithError("changes something when it is run again");
            return;
        }
        state.counters["unsatisfied"] = static_cast<double>(
            std::count_if(found.misses.begin(), found.misses.end(), [](double m) { return m != 0.0; }));
        state.counters["ms"] = time.median * 1e3;
        state.counters["least"] = time.least * 1e3;
        state.counters["processor ms"] = time.processor * 1e3;
    }
}

void register_benchmarks() {
    const struct {
        const char* name;
        Wish wish;
    } wishes[] = {{"agreeable", Wish::kAgreeable},
                  {"contradictory", Wish::kContradictory},
                  {"scattered", Wish::kScattered}};
    for (const auto& [text, wish] : wishes) {
        for (const Solver& solver : solvers(wish)) {
            const std::string name = solver.name + " " + text;
            benchmark::RegisterBenchmark(name.c_str(), solve, solver)->Iterations(1);
        }
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::register_benchmarks();
    return bench::run_table(argc, argv, "solver, samples",
                            {{"unsatisfied", 0}, {"processor ms", 1}, {"ms", 1}, {"least", 1}});
}
