// Compiled once for the shared library, which programs load as they start and which may therefore keep the
// variable where a load reaches it, and once for modules, to which the system promises no such room.
#include "ThisThread.h"

namespace Zo::Image {

ThisThread& this_thread() {
    thread_local constinit ThisThread state;
    return state;
}

}  // namespace Zo::Image
