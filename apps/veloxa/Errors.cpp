#include "Errors.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <mutex>
#include <tuple>

namespace veloxa {

namespace {

std::mutex mutex;           // guards standard error and the flag below
bool status_shown = false;  // the cursor stands behind a status line

// Standard error as the program got it.
std::FILE* messages() {
    static std::FILE* const stream = [] {
        const int copy = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        std::FILE* const opened = copy < 0 ? nullptr : ::fdopen(copy, "w");
        return opened ? opened : stderr;
    }();
    return stream;
}

std::mutex hush_mutex;  // guards the two below
int hushed = 0;
int unhushed = -1;  // standard error, meanwhile

thread_local const std::string* worked_on = nullptr;  // the file under this thread's innermost Hush

// Calls nothing that a signal's handler may not. abort goes on once it returns.
extern "C" void name_file(int) {
    if (worked_on == nullptr) return;
    const int to = ::fileno_unlocked(messages());
    for (const std::string_view text :
         {"veloxa: ", worked_on->c_str(), ": the image library gave up over it\n"}) {
        // Nobody is left to tell when a line cannot be printed.
        std::ignore = ::write(to, text.data(), text.size());
    }
}

void clear_status() {
    if (status_shown) std::fputs("\r\033[K", messages());
    status_shown = false;
}

}  // namespace

void report(std::string_view text) {
    const std::lock_guard hold(mutex);
    clear_status();
    std::fprintf(messages(), "veloxa: %.*s\n", static_cast<int>(text.size()), text.data());
    std::fflush(messages());
}

Hush::Hush(const std::string& file) : outer_(worked_on) {
    worked_on = &file;
    const std::lock_guard hold(hush_mutex);
    if (hushed++ > 0) return;
    messages();
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    unhushed = nowhere < 0 ? -1 : ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (unhushed >= 0) ::dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0) ::close(nowhere);
}

Hush::~Hush() {
    worked_on = outer_;
    const std::lock_guard hold(hush_mutex);
    if (--hushed > 0 || unhushed < 0) return;
    ::dup2(unhushed, STDERR_FILENO);
    ::close(unhushed);
}

void report_aborts() {
    messages();
    std::signal(SIGABRT, name_file);
}

void show_status(std::string_view line) {
    const std::lock_guard hold(mutex);
    clear_status();
    if (line.empty()) {
        std::fflush(messages());
        return;
    }
    std::fprintf(messages(), "%.*s", static_cast<int>(line.size()), line.data());
    std::fflush(messages());
    status_shown = true;
}

}  // namespace veloxa
