// Ctrl-C and requests to end, as an abort flag.
#pragma once

#include "ZoImage/Render.h"

namespace veloxa {

// Raised by SIGINT, SIGTERM and SIGHUP once catch_interrupts was called.
Zo::Image::AbortFlag& interrupt_flag();
void catch_interrupts();

}  // namespace veloxa
