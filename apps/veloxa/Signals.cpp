#include "Signals.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <string_view>
#include <tuple>

#include "Terminal.h"
#include "shot/files/ImageLibrary.h"

namespace veloxa {

namespace {

Zo::Image::AbortFlag flag;
Zo::Image::AbortFlag ending;
Zo::Image::AbortFlag interrupted;  // by the user
std::atomic<int> grace{0};         // seconds
std::atomic<std::int64_t> ended_at{0};

// Who ends a group of processes often tells each by itself, too: what comes so soon is the same signal.
constexpr std::int64_t kSameSignal = 1'000'000'000;

std::int64_t nanoseconds_now() {
    struct timespec now {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

// These call nothing that a signal's handler may not.
extern "C" void raise_flag(int number) {
    if (number != SIGALRM) interrupted.raise();
    flag.raise();
}

extern "C" void end(int) {
    const std::int64_t now = nanoseconds_now();
    const bool first = !ending.raised();
    if (first) ended_at = now;
    ending.raise();
    if (first && grace > 0) ::alarm(static_cast<unsigned>(grace));
    if (grace == 0 || (!first && now - ended_at > kSameSignal)) flag.raise();
}

// Abort goes on once it returns.
extern "C" void name_file(int) {
    const std::string* const file = Hush::file();
    if (file == nullptr) return;
    for (const std::string_view text : {"veloxa: ", file->c_str(), ": the image library gave up over it\n"}) {
        // Nobody is left to tell when a line cannot be printed.
        std::ignore = ::write(message_file(), text.data(), text.size());
    }
}

void handle(int number, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;  // reads and writes go on; the flag is looked at between them
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

}  // namespace

Zo::Image::AbortFlag& interrupt_flag() {
    return flag;
}

void catch_interrupts() {
    handle(SIGINT, raise_flag);
    handle(SIGALRM, raise_flag);
    handle(SIGTERM, end);
    struct sigaction present {};
    sigaction(SIGHUP, nullptr, &present);
    if (present.sa_handler != SIG_IGN) handle(SIGHUP, raise_flag);  // nohup means to go on
}

void end_gently(int grace_seconds) {
    grace = grace_seconds;
}

const Zo::Image::AbortFlag& ending_flag() {
    return ending;
}

bool ended_by_scheduler() {
    return ending.raised() && !interrupted.raised();
}

void survive_closed_pipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

void report_aborts() {
    message_file();
    std::signal(SIGABRT, name_file);
}

}  // namespace veloxa
