// A last word when a library ends the program.
#pragma once

namespace veloxa {

// From now on, when a library aborts the whole program over a damaged file, the name of the file is reported:
// what the library says is dropped.
void report_aborts();

}  // namespace veloxa
