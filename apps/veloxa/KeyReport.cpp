#include "KeyReport.h"

#include <cxxabi.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>

#include "ZoImage/Iop.h"

namespace veloxa {

using namespace Zo::Image;
using nlohmann::ordered_json;

namespace {

double milliseconds(std::chrono::nanoseconds time, int frames) {
    return std::chrono::duration<double, std::milli>(time).count() / std::max(frames, 1);
}

// Member names down from the node's own operators; the node and its inputs have none.
std::string name_of(const Iop& op) {
    if (op.member_name().empty()) return op.context().node_name;
    const Op* owner = op.parent();
    const bool nested = owner && !owner->member_name().empty();
    return (nested ? owner->member_name() + "." : std::string()) + op.member_name();
}

// Some classes go by the platform's name of their type, which starts with its length.
std::string class_of(const Iop& op) {
    std::string name = op.class_name();
    if (name.find_first_of("0123456789") != 0) return name;
    int failed = 0;
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &failed), &std::free);
    return failed == 0 ? readable.get() : name;
}

double ratio_of(const OpStats& one, const KeyStats& stats) {
    return stats.frame_rows > 0 ? static_cast<double>(one.rows) / static_cast<double>(stats.frame_rows) : 0.0;
}

}  // namespace

long peak_memory() {
    struct rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

std::string stats_table(const KeyStats& stats) {
    char line[160];
    std::snprintf(line, sizeof line, "%-24s %-22s %10s %7s %10s\n", "operator", "class", "rows", "ratio",
                  "ms/frame");
    std::string table = line;
    for (const OpStats& one : stats.ops) {
        std::snprintf(line, sizeof line, "%-24s %-22s %10lld %7.3f %10.2f\n", name_of(*one.op).c_str(),
                      class_of(*one.op).c_str(), static_cast<long long>(one.rows), ratio_of(one, stats),
                      milliseconds(one.time, stats.frames));
        table += line;
    }
    std::snprintf(line, sizeof line, "%d frames: read %.2f ms, key %.2f ms, write %.2f ms a frame\n",
                  stats.frames, milliseconds(stats.read, stats.frames), milliseconds(stats.key, stats.frames),
                  milliseconds(stats.write, stats.frames));
    table += line;
    std::snprintf(line, sizeof line, "peak memory %ld MB\n", peak_memory());
    return table + line;
}

std::string stats_json(const KeyStats& stats) {
    ordered_json operators = ordered_json::array();
    for (const OpStats& one : stats.ops) {
        operators.push_back({{"name", name_of(*one.op)},
                             {"class", class_of(*one.op)},
                             {"rows", one.rows},
                             {"ratio", ratio_of(one, stats)},
                             {"ms", milliseconds(one.time, stats.frames)}});
    }
    return ordered_json{{"operators", operators},
                        {"frames", stats.frames},
                        {"made", stats.counts.made},
                        {"kept", stats.counts.kept},
                        {"stale", stats.counts.stale},
                        {"failed", stats.counts.failed},
                        {"read_ms", milliseconds(stats.read, stats.frames)},
                        {"key_ms", milliseconds(stats.key, stats.frames)},
                        {"write_ms", milliseconds(stats.write, stats.frames)},
                        {"peak_memory_mb", peak_memory()}}
               .dump(2) +
           "\n";
}

}  // namespace veloxa
