// What signals do to the program.
#pragma once

#include "ZoImage/Render.h"

namespace veloxa {

// Raised by SIGINT, SIGTERM and SIGHUP once catch_interrupts was called.
Zo::Image::AbortFlag& interrupt_flag();
void catch_interrupts();

// How long what is under way may take after SIGTERM, which schedulers send some time before they kill.
inline constexpr int kGraceSeconds = 20;
// From now on the first SIGTERM raises ending_flag alone, and interrupt_flag only when so many seconds have
// gone; a second one raises it at once.
void end_gently(int grace_seconds);
// Raised by SIGTERM.
const Zo::Image::AbortFlag& ending_flag();
// Whether SIGTERM, and no other signal, has raised interrupt_flag.
bool ended_by_scheduler();

// From now on writing to a pipe that nobody reads any more is an error like others, and does not end the
// program.
void survive_closed_pipes();

// From now on, when a library aborts the whole program over a damaged file, the name of the file is reported:
// what the library says is dropped.
void report_aborts();

}  // namespace veloxa
