#include "render/Priority.h"

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace veloxa::viewer {

namespace {

// On Linux the number of a thread stands for that thread alone. Where the system refuses, nothing is lost.
void set_nice(int value) {
    const auto thread = static_cast<id_t>(::syscall(SYS_gettid));
    static_cast<void>(::setpriority(PRIO_PROCESS, thread, value));
}

}  // namespace

void step_back() {
    set_nice(4);
}

void step_far_back() {
    set_nice(19);
}

}  // namespace veloxa::viewer
