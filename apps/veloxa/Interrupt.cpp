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
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaction(number, &action, nullptr);
}

}  // namespace veloxa
