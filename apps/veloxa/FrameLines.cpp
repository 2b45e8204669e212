#include "FrameLines.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "KeyReport.h"
#include "Terminal.h"

namespace veloxa {

namespace {

using nlohmann::ordered_json;

double milliseconds(std::chrono::nanoseconds time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

const char* name_of(FrameReport::State state) {
    switch (state) {
        case FrameReport::State::kMade:
            return "made";
        case FrameReport::State::kKept:
            return "kept";
        case FrameReport::State::kStale:
            return "stale";
        case FrameReport::State::kFailed:
            return "failed";
        case FrameReport::State::kOther:
            return "other";
    }
    return "";
}

std::string json_line(const FrameReport& report) {
    const ordered_json error = report.error.empty() ? ordered_json(nullptr) : ordered_json(report.error);
    return ordered_json{{"frame", report.frame},
                        {"state", name_of(report.state)},
                        {"read_ms", milliseconds(report.read)},
                        {"key_ms", milliseconds(report.key)},
                        {"write_ms", milliseconds(report.write)},
                        {"peak_mb", peak_memory()},
                        {"error", error}}
        .dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

// Nobody is left to tell when it cannot be printed.
void put(const std::string& line) {
    std::fputs((line + '\n').c_str(), stdout);
    std::fflush(stdout);
}

}  // namespace

void FrameLines::tell(const FrameReport& report) {
    const std::lock_guard hold(mutex_);
    if (form_ == "json") return report_line(json_line(report));
    if (form_ != "openjd") return;
    ++done_;
    std::string status = std::to_string(done_) + " frames";
    if (frames_ > 0) {
        char percent[32];
        std::snprintf(percent, sizeof percent, "%.1f", 100.0 * done_ / frames_);
        put(std::string("openjd_progress: ") + percent);
        status = std::to_string(done_) + " of " + std::to_string(frames_) + " frames";
    }
    if (report.state == FrameReport::State::kFailed) {
        ++failed_;
        put("openjd_fail: " + report.error);
    }
    put("openjd_status: " + status + (failed_ > 0 ? ", " + std::to_string(failed_) + " failed" : ""));
}

void FrameLines::fail(const std::string& why) {
    if (form_ == "openjd") put("openjd_fail: " + why);
}

}  // namespace veloxa
