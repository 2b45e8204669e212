// What an artist waits for: the frame again after one knob moved, with and without rows kept from before.
#include <span>
#include <string>

#include "keyer/NodeRig.h"
#include "support/Table.h"

namespace bench {

namespace {

constexpr int kWidth = 4096;
constexpr int kHeight = 2160;
constexpr std::size_t kBudget = std::size_t{4} << 30U;

struct Edit {
    const char* name;
    void (*move)(KnobStorage&, int step);  // to another value at each step
};
constexpr Edit kEdits[]{
    {"spill_cool", [](KnobStorage& k, int step) { k.spill_cool = 50.0f + static_cast<float>(step % 2); }},
    {"output_mode", [](KnobStorage& k, int step) { k.output_mode = step % 2; }},
    {"warm", [](KnobStorage& k, int step) { k.warm = static_cast<float>(step % 2); }},
};
// What lies before the moved knob's operator is kept whether rows are or not.
constexpr Edit kUnmixEdits[]{
    {"unmix_spill", [](KnobStorage& k, int step) { k.unmix_spill = step % 2 == 0 ? 1.0f : 0.9f; }},
    {"unmix_denoise", [](KnobStorage& k, int step) { k.unmix_denoise = step % 2 == 0 ? 1.0f : 0.9f; }},
    {"unmix_veil", [](KnobStorage& k, int step) { k.unmix_veil = step % 2 == 0 ? 0.7f : 0.6f; }},
};

const Plate& plate() {
    static const Plate made = make_plate(kWidth, kHeight);
    return made;
}

std::uint64_t after_edit(const Configuration& configuration, const Edit& edit, bool kept) {
    const Plate small = make_plate(480, 270);
    NodeRig rig(small, configuration, 2);
    if (kept) {
        rig.use_cache(kBudget);
        rig.key_next_frame();
    }
    edit.move(rig.knobs(), 1);
    rig.key_again();
    return rig.checksum();
}

void time_edit(benchmark::State& state, const Configuration& configuration, const Edit& edit) {
    for (auto _ : state) {
        if (after_edit(configuration, edit, true) != after_edit(configuration, edit, false)) {
            state.SkipWithError("differs from a fresh key");
            return;
        }
        double key = 0.0;
        for (const bool kept : {false, true}) {
            NodeRig rig(plate(), configuration, 2);
            if (kept) rig.use_cache(kBudget);
            rig.key_next_frame();
            if (!kept) key = time_calls([&] { rig.key_next_frame(); }, 3, 0.0).median;
            int step = 0;
            const auto move = [&] {
                edit.move(rig.knobs(), ++step);
                rig.key_again();
            };
            const double again = time_calls(move, 5, 0.0).median;
            const std::string suffix = kept ? ", rows kept" : "";
            state.counters["ms" + suffix] = again * 1e3;
            state.counters["% of a key" + suffix] = 100.0 * again / key;
        }
        state.counters["ms, key"] = key * 1e3;
    }
}

void register_benchmarks() {
    for (const Configuration& configuration : kConfigurations) {
        const std::string name = configuration.name;
        const bool unmix = name == "unmix";
        if (!unmix && name != "default" && name != "shadows" && name != "everything") continue;
        for (const Edit& edit : unmix ? std::span<const Edit>(kUnmixEdits) : kEdits) {
            benchmark::RegisterBenchmark((name + ", " + edit.name).c_str(), time_edit, configuration, edit)
                ->Iterations(1);
        }
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::register_benchmarks();
    return bench::run_table(
        argc, argv, "one knob moved, 4096 x 2160, 2 threads",
        {{"ms, key", 1}, {"ms", 1}, {"% of a key", 1}, {"ms, rows kept", 1}, {"% of a key, rows kept", 1}});
}
