// Options about a node's knobs, which several commands share.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "Node.h"

namespace veloxa {

// Where the screen colour comes from when not from the knobs themselves; at most one of the two is set.
struct ScreenOptions {
    std::string pick;    // a box, see Pick.h
    std::string screen;  // one of kScreenChoices
};

// --script and --set.
void add_knob_options(CLI::App& command, KnobSettings& settings);
// --pick and --screen; `image` says which image they look at.
void add_screen_options(CLI::App& command, ScreenOptions& options, const std::string& image);

}  // namespace veloxa
