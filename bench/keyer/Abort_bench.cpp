// How long an aborted render goes on: every knob that holds numbers, moved to the ends of its slider and far
// beyond, with all that can be switched on, aborted at many moments of the frame.
#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "ZoImage/KnobPanel.h"
#include "keyer/NodeRig.h"
#include "support/Table.h"

namespace bench {

namespace {

using namespace Zo::Image;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr int kThreads = 2;
constexpr int kMoments = 10;
constexpr Seconds kLongest{0.5};  // after which a frame is aborted anyway
constexpr double kFarBeyond = 1e6;

const Plate& plate() {
    static const Plate made = make_plate(1920, 1080);
    return made;
}

struct Stop {
    Seconds frame;  // until it was finished or aborted
    Seconds tail;   // of that after the flag was raised
};

// A frame that is aborted after `moment`.
Stop abort_after(NodeRig& rig, AbortFlag& abort, Seconds moment) {
    abort.clear();
    Clock::time_point end;
    const Clock::time_point begin = Clock::now();
    std::jthread render([&] {
        rig.key_next_frame();
        end = Clock::now();
    });
    std::this_thread::sleep_for(moment);
    const Clock::time_point raised = Clock::now();
    abort.raise();
    render.join();
    return {end - begin, std::max(end - raised, Clock::duration::zero())};
}

// What the ends of the slider, or what lies beyond, cost at worst.
struct Worst {
    Seconds frame{0};
    Seconds tail{0};
    std::vector<Seconds> tails;
};

void try_value(const Configuration& everything, const std::string& name, double value, Worst& worst) {
    AbortFlag abort;
    NodeRig rig(plate(), everything, kThreads, 0, 0, &abort);
    KnobPanel panel(rig.node());
    Knob& knob = panel.get(name);
    for (int i = 0; i < knob.value_count(); ++i) knob.set_value(value, i);
    const Seconds frame = std::min(abort_after(rig, abort, kLongest).frame, kLongest);
    worst.frame = std::max(worst.frame, frame);
    for (int n = 0; n < kMoments; ++n) {
        const Seconds tail = abort_after(rig, abort, frame * (n + 0.5) / kMoments).tail;
        worst.tail = std::max(worst.tail, tail);
        worst.tails.push_back(tail);
    }
}

double milliseconds(Seconds time) {
    return time.count() * 1e3;
}

void abort_with(benchmark::State& state, const std::string& knob, const KnobRange& range) {
    const auto everything = std::find_if(kConfigurations.begin(), kConfigurations.end(), [](const auto& c) {
        return std::string_view(c.name) == "everything";
    });
    for (auto _ : state) {
        const auto measure = [&](const std::string& suffix, std::initializer_list<double> values) {
            Worst worst;
            for (const double value : values) try_value(*everything, knob, value, worst);
            std::sort(worst.tails.begin(), worst.tails.end());
            state.counters["frame, " + suffix] = milliseconds(worst.frame);
            state.counters["stop, " + suffix] = milliseconds(worst.tails[worst.tails.size() / 2]);
            state.counters["longest, " + suffix] = milliseconds(worst.tail);
        };
        measure("slider", {range.low, range.high});
        measure("beyond", {-kFarBeyond, kFarBeyond});
    }
}

void register_benchmarks() {
    VeloxaKeyer node(NodeContext{});
    const KnobPanel panel(node);
    for (const auto& knob : panel.knobs()) {
        const bool own = &knob->target() == knob.get();
        const bool numbers = own && (knob->range() || knob->kind() == Knob::Kind::kColor);
        if (!numbers || knob->name() == "screen_color") continue;
        benchmark::RegisterBenchmark(knob->name().c_str(), abort_with, knob->name(),
                                     knob->range().value_or(KnobRange{0.0, 1.0}))
            ->Iterations(1);
    }
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    bench::register_benchmarks();
    std::vector<bench::Column> columns;
    for (const char* const suffix : {", slider", ", beyond"}) {
        for (const char* const counter : {"frame", "stop", "longest"}) {
            columns.push_back({std::string(counter) + suffix, 1});
        }
    }
    return bench::run_table(argc, argv, "aborted frames, 1920 x 1080, 2 threads, milliseconds", columns);
}
