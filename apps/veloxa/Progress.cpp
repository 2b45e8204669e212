#include "Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Terminal.h"

namespace veloxa {

namespace {

using Seconds = std::chrono::duration<double>;

constexpr int kBarWidth = 30;
// A still that is done at once shows nothing.
constexpr Seconds kBarAfter{0.5};
constexpr Seconds kBarEvery{0.2};
constexpr Seconds kLineEvery{5.0};

std::string clock_text(double seconds) {
    const auto whole = static_cast<long long>(std::clamp(std::ceil(seconds), 0.0, 359999.0));
    char text[32];
    if (whole >= 3600) {
        std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text, sizeof text, "%lld:%02lld", whole / 60, whole % 60);
    }
    return text;
}

// `done` and `total` are frames, done may be a fraction.
std::string progress_text(double done, int total, double elapsed, bool bar) {
    if (total > 0) done = std::clamp(done, 0.0, static_cast<double>(total));
    const double fps = elapsed > 0.0 ? done / elapsed : 0.0;
    char text[96];
    if (total == 0) {  // a stream's; nobody knows
        std::snprintf(text, sizeof text, "%d frames, %.2f fps", static_cast<int>(done), fps);
        return text;
    }
    const std::string left = done > 0.0 ? clock_text(elapsed * (total - done) / done) : "?";
    std::string line;
    if (bar) {
        const auto filled = static_cast<std::size_t>(kBarWidth * done / total);
        line += '[';
        line.append(filled, '#').append(kBarWidth - filled, '.');
        line += "] ";
    }
    std::snprintf(text, sizeof text, "%d of %d frames, %.2f fps, %s left", static_cast<int>(done), total, fps,
                  left.c_str());
    return line + text;
}

}  // namespace

Progress::Progress(bool quiet) : terminal_(::isatty(STDERR_FILENO) == 1) {
    if (!quiet) ticker_ = std::jthread([this](const std::stop_token& stop) { tick(stop); });
}

Progress::~Progress() {
    if (!ticker_.joinable()) return;
    ticker_.request_stop();
    ticker_.join();
    if (terminal_) show_status("");
}

void Progress::tick(const std::stop_token& stop) {
    const auto start = std::chrono::steady_clock::now();
    std::unique_lock hold(mutex_);
    Seconds wait = terminal_ ? kBarAfter : kLineEvery;
    while (!woken_.wait_for(hold, stop, wait, [] { return false; }) && !stop.stop_requested()) {
        wait = terminal_ ? kBarEvery : kLineEvery;
        if (frames_ < 0) continue;  // nothing has begun
        const double elapsed = Seconds(std::chrono::steady_clock::now() - start).count();
        (terminal_ ? show_status : report)(progress_text(done_, frames_, elapsed, terminal_));
    }
}

}  // namespace veloxa
