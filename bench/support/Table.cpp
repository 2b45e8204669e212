#include "support/Table.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace bench {

namespace {

class TableReporter final : public benchmark::BenchmarkReporter {
  public:
    TableReporter(std::string title, const std::vector<Column>& columns)
        : title_(std::move(title)), columns_(columns) {}

    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (!started_) begin();
            print(run);
        }
        std::fflush(stdout);
    }

    bool failed() const { return failed_; }

  private:
    void begin() {
        started_ = true;
        std::printf("\n| %-44s |", title_.c_str());
        for (const Column& column : columns_) std::printf(" %s |", column.counter.c_str());
        std::printf("\n|%s|", std::string(46, '-').c_str());
        for (const Column& column : columns_) {
            std::printf("%s:|", std::string(column.counter.size() + 1, '-').c_str());
        }
        std::printf("\n");
    }

    void print(const Run& run) {
        if (run.error_occurred) {
            failed_ = true;
            std::fprintf(stderr, "%s: %s\n", run.run_name.function_name.c_str(), run.error_message.c_str());
            return;
        }
        std::printf("| %-44s |", run.run_name.function_name.c_str());
        for (const Column& column : columns_) {
            const auto width = static_cast<int>(column.counter.size());
            const auto found = run.counters.find(column.counter);
            if (found == run.counters.end() || std::isnan(found->second.value)) {
                std::printf(" %*s |", width, "");
            } else {
                std::printf(" %*.*f |", width, column.decimals, found->second.value);
            }
        }
        std::printf("\n");
    }

    std::string title_;
    const std::vector<Column>& columns_;
    bool started_ = false;
    bool failed_ = false;
};

}  // namespace

int run_table(int argc, char** argv, const std::string& title, const std::vector<Column>& columns) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    TableReporter reporter(title, columns);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return reporter.failed() ? 1 : 0;
}

Timing time_calls(const std::function<void()>& work, int calls, double seconds) {
    using Clock = std::chrono::steady_clock;
    work();
    std::vector<double> times;
    double total = 0.0;
    const std::clock_t used = std::clock();
    while (static_cast<int>(times.size()) < calls || total < seconds) {
        const auto start = Clock::now();
        work();
        times.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        total += times.back();
    }
    const double processor = static_cast<double>(std::clock() - used) / static_cast<double>(CLOCKS_PER_SEC);
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times.front(), processor / static_cast<double>(times.size())};
}

}  // namespace bench
