// What signals do to the program.
#pragma once

#include "ZoImage/Render.h"

namespace veloxa {

// Raised by SIGINT, SIGTERM and SIGHUP once catch_interrupts was called.
Zo::Image::AbortFlag& interrupt_flag();
void catch_interrupts();

// From now on writing to a pipe that nobody reads any more is an error like others, and does not end the
// program.
void survive_closed_pipes();

// From now on, when a library aborts the whole program over a damaged file, the name of the file is reported:
// what the library says is dropped.
void report_aborts();

}  // namespace veloxa
