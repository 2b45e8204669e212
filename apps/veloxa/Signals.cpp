#include "Signals.h"

#include <unistd.h>

#include <csignal>
#include <string_view>
#include <tuple>

#include "Terminal.h"
#include "shot/files/ImageLibrary.h"

namespace veloxa {

namespace {

Zo::Image::AbortFlag flag;

extern "C" void raise_flag(int) {
    flag.raise();
}

// Calls nothing that a signal's handler may not. abort goes on once it returns.
extern "C" void name_file(int) {
    const std::string* const file = Hush::file();
    if (file == nullptr) return;
    for (const std::string_view text : {"veloxa: ", file->c_str(), ": the image library gave up over it\n"}) {
        // Nobody is left to tell when a line cannot be printed.
        std::ignore = ::write(message_file(), text.data(), text.size());
    }
}

}  // namespace

Zo::Image::AbortFlag& interrupt_flag() {
    return flag;
}

void catch_interrupts() {
    struct sigaction action {};
    action.sa_handler = raise_flag;
    action.sa_flags = SA_RESTART;  // reads and writes go on; the flag is looked at between them
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM}) sigaction(number, &action, nullptr);
    struct sigaction present {};
    sigaction(SIGHUP, nullptr, &present);
    if (present.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);  // nohup means to go on
}

void survive_closed_pipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

void report_aborts() {
    message_file();
    std::signal(SIGABRT, name_file);
}

}  // namespace veloxa
