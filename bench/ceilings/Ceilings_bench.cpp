// Prints the ceilings that the other programs measure their floors with.
#include "ceilings/Ceilings.h"
#include "lanes/Lanes.h"
#include "support/Table.h"

namespace {

void show(const char* name, double rate) {
    benchmark::RegisterBenchmark(name, [rate](benchmark::State& state) {
        for (auto _ : state) state.counters["G/s"] = rate / 1e9;
    })->Iterations(1);
}

}  // namespace

int main(int argc, char** argv) {
    const bench::Ceilings& most = bench::ceilings();
    show("float divisions", most.float_divisions);
    show("double divisions", most.double_divisions);
    show("float multiply-adds", most.float_multiply_adds);
    show("double multiply-adds", most.double_multiply_adds);
    show("conversions between float and double", most.conversions);
    show("bytes read and written in the 2nd-level cache", most.cached_bytes);
    show("bytes read and written in memory, all threads", most.copied_bytes);
    return bench::run_table(argc, argv, std::string("ceilings of one core, ") + name_of(lanes_in_use()),
                            {{"G/s", 2}});
}
