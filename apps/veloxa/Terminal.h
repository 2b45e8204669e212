// What the program prints.
#pragma once

#include <string>
#include <string_view>

#include "shot/Caller.h"

namespace veloxa {

// The file descriptor that messages go to: standard error as the program got it, also while a Hush lives.
// The first call must come before one does.
int message_file();

// Prints "veloxa: TEXT" to standard error as one line, clearing the status line; any thread.
void report(std::string_view text);

// Prints the line alone there, for programs to read; any thread.
void report_line(std::string_view line);

// Shows a line that the next status or report replaces; an empty one clears it. For terminals.
void show_status(std::string_view line);

// Has work end at Ctrl-C and prints what it warns of and, unless `quiet`, tells. It shows no progress.
Caller caller_for(bool quiet);

// Throws UsageError, WHAT is a terminal, where the file descriptor is one.
void refuse_terminal(int file, const std::string& what);

// Prints to standard output, clearing the status line. Throws Error when that cannot be written.
void print(std::string_view text);

}  // namespace veloxa
