// How long the viewer's window takes from a hand's move to the picture, and how long its thread is held up.
//
//   bench_window [WIDTHxHEIGHT...] [WORD]    WORD: what has it in its name alone
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "panel/DarkTheme.h"
#include "viewer/WatchedApplication.h"
#include "viewer/WindowRig.h"

namespace bench {

namespace {

constexpr int kMoves = 40;
constexpr int kFrames = 7;
constexpr int kApart = 20;  // further than frames are read ahead

double part(std::vector<double> times, double share) {
    if (times.empty()) return 0.0;
    std::ranges::sort(times);
    return times[static_cast<std::size_t>(share * static_cast<double>(times.size() - 1) + 0.5)];
}

void print(const std::vector<double>& times) {
    if (times.empty()) {
        std::printf(" | |");
    } else {
        std::printf(" %.0f | %.0f |", part(times, 0.5), part(times, 0.95));
    }
}

void print(const char* what, const std::vector<Seen>& seen) {
    const auto all = [&](Delay Seen::*which, double Delay::*clock) {
        std::vector<double> times;
        for (const Seen& one : seen) times.push_back(one.*which.*clock);
        return times;
    };
    std::printf("| %s |", what);
    print(all(&Seen::first, &Delay::clock));
    print(all(&Seen::first, &Delay::processor));
    print(all(&Seen::whole, &Delay::clock));
    print(all(&Seen::whole, &Delay::processor));
    std::printf(" |");
}

void print(const char* what, const Dragged& dragged) {
    std::printf("| %s |", what);
    print(dragged.first);
    print(std::vector<double>{});
    std::printf(" %.0f | | | | %.0f", dragged.whole, dragged.per_second);
}

void print_events(const WatchedApplication& application) {
    std::printf("\nThe window's thread, events by their milliseconds.\n\n|");
    for (const double limit : EventTimes::kLimits) std::printf(" | to %.0f", limit);
    std::printf(" | more |\n|---|");
    for (std::size_t n = 0; n < EventTimes::kLimits.size() + 1; ++n) std::printf("---:|");
    for (const auto& [name, times] : {std::pair{"as a clock sees it", &application.wall()},
                                      std::pair{"processor time", &application.processor()}}) {
        std::printf("\n| %s |", name);
        for (const int count : times->counts) std::printf(" %d |", count);
    }
    std::printf("\n\nThe slowest:\n");
    for (const WatchedApplication::Slow& slow : application.slowest()) {
        std::printf("- %s, %.1f ms, of the processor %.1f\n", slow.what.c_str(), slow.ms, slow.processor_ms);
    }
}

bool run(WatchedApplication& application, int width, int height, const std::string& word) {
    WindowRig rig(application, width, height, kFrames, kApart);
    std::printf("\n### The viewer's window, %dx%d\n\n", width, height);
    std::printf(
        "| | first ms | 95 %% | processor ms | 95 %% | whole ms | 95 %% | processor ms | 95 %% | shown a "
        "second | longest gap | its processor ms |\n"
        "|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n");
    application.start_watching();
    const auto measure = [&](const char* what, const auto& work) {
        if (!rig.good() || std::string(what).find(word) == std::string::npos) return;
        print(what, work());
        const Delay gap = application.take_gap();
        std::printf(" | %.0f | %.0f |\n", gap.clock, gap.processor);
        std::fflush(stdout);
    };
    measure("spill knob", [&] { return rig.slide_and_wait("spill_cool", kMoves); });
    measure("spill knob, dragged", [&] { return rig.slide("spill_cool", kMoves); });
    measure("matte knob", [&] { return rig.slide_and_wait("brights", kMoves); });
    measure("matte knob, dragged", [&] { return rig.slide("brights", kMoves); });
    measure("output knob", [&] { return rig.choose_and_wait("matte_scale", "spill_warm", kMoves); });
    measure("preview of a stroke", [&] { return rig.paint_and_wait("toolbar_addmatte", kMoves / 2); });
    measure("frame that was not read", [&] { return rig.scrub_and_wait(); });
    application.stop_watching();
    print_events(application);
    return rig.good();
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    bench::WatchedApplication application(argc, argv);
    veloxa::viewer::use_dark_theme(application);
    std::vector<std::pair<int, int>> sizes{{1920, 1080}, {4096, 2160}};
    std::vector<std::pair<int, int>> named;
    std::string word;
    for (int n = 1; n < argc; ++n) {
        int width = 0;
        int height = 0;
        if (std::sscanf(argv[n], "%dx%d", &width, &height) != 2) {
            word = argv[n];
        } else if (width >= 64 && height >= 64) {
            named.emplace_back(width, height);
        } else {
            std::cerr << "usage: bench_window [WIDTHxHEIGHT...] [WORD]\n";
            return 2;
        }
    }
    if (!named.empty()) sizes = named;
    bool good = true;
    for (const auto& [width, height] : sizes) good = bench::run(application, width, height, word) && good;
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
