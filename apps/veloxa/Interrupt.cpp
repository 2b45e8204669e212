#include "Interrupt.h"

#include <csignal>

namespace veloxa {

namespace {

Zo::Image::AbortFlag flag;

extern "C" void raise_flag(int) {
    flag.raise();
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

}  // namespace veloxa
