#include "Terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>

#include "Signals.h"
#include "shot/Errors.h"

namespace veloxa {

namespace {

std::mutex mutex;           // guards standard error and the flag below
bool status_shown = false;  // the cursor stands behind a status line

std::FILE* messages() {
    static std::FILE* const stream = [] {
        const int copy = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        std::FILE* const opened = copy < 0 ? nullptr : ::fdopen(copy, "w");
        return opened ? opened : stderr;
    }();
    return stream;
}

void clear_status() {
    if (status_shown) std::fputs("\r\033[K", messages());
    status_shown = false;
}

}  // namespace

int message_file() {
    return ::fileno_unlocked(messages());
}

void report(std::string_view text) {
    const std::lock_guard hold(mutex);
    clear_status();
    std::fprintf(messages(), "veloxa: %.*s\n", static_cast<int>(text.size()), text.data());
    std::fflush(messages());
}

void report_line(std::string_view line) {
    const std::lock_guard hold(mutex);
    clear_status();
    std::fprintf(messages(), "%.*s\n", static_cast<int>(line.size()), line.data());
    std::fflush(messages());
}

void show_status(std::string_view line) {
    const std::lock_guard hold(mutex);
    clear_status();
    std::fprintf(messages(), "%.*s", static_cast<int>(line.size()), line.data());
    std::fflush(messages());
    status_shown = !line.empty();
}

Caller caller_for(bool quiet) {
    Caller caller;
    caller.abort = &interrupt_flag();
    caller.warn = report;
    if (!quiet) caller.tell = report;
    return caller;
}

void refuse_terminal(int file, const std::string& what) {
    if (::isatty(file) == 1)
        throw UsageError(what + " is a terminal; a stream of frames goes through a pipe");
}

void print(std::string_view text) {
    show_status("");
    const bool whole = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) != 0 || !whole) throw Error("standard output could not be written");
}

}  // namespace veloxa
