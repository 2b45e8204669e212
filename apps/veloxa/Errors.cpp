#include "Errors.h"

#include <cstdio>
#include <mutex>

namespace veloxa {

namespace {

std::mutex mutex;           // guards standard error and the flag below
bool status_shown = false;  // the cursor stands behind a status line

void clear_status() {
    if (status_shown) std::fputs("\r\033[K", stderr);
    status_shown = false;
}

}  // namespace

void report(std::string_view text) {
    const std::lock_guard hold(mutex);
    clear_status();
    std::fprintf(stderr, "veloxa: %.*s\n", static_cast<int>(text.size()), text.data());
}

void show_status(std::string_view line) {
    const std::lock_guard hold(mutex);
    clear_status();
    if (line.empty()) {
        std::fflush(stderr);
        return;
    }
    std::fprintf(stderr, "%.*s", static_cast<int>(line.size()), line.data());
    std::fflush(stderr);
    status_shown = true;
}

}  // namespace veloxa
