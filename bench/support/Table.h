// Benchmarks whose results are read as tables: counters in columns, in Markdown.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace bench {

// A counter of a benchmark, by its name, which is the column's heading too.
struct Column {
    std::string counter;
    int decimals;
};

// Runs the registered benchmarks that the command line asks for and prints one line each. Returns the
// program's exit status: 1 when a benchmark reported an error.
int run_table(int argc, char** argv, const std::string& title, const std::vector<Column>& columns);

struct Timing {  // seconds
    double median;
    double least;
    double processor;  // a call's mean share of processor time, all threads: other programs do not count
};

// Times calls of `work` after one that is not counted, until both the count and the seconds are reached.
Timing time_calls(const std::function<void()>& work, int calls, double seconds);

}  // namespace bench
