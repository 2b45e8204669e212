// The whole command line of the program, for the program itself and for what is made from it.
#pragma once

#include <CLI/CLI.hpp>

#include "Commands.h"

namespace veloxa {

// Adds --version and every command; `app` is new, and `run` outlives it.
void add_program(CLI::App& app, Run& run);

}  // namespace veloxa
