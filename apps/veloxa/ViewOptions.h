// The options of the viewer, which `veloxa view` and veloxa-viewer share, and the latter's command line.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "shot/setup/KeySetup.h"

namespace veloxa {

struct ViewOptions {
    std::vector<std::string> plates;  // one, or frames of one sequence, or saved settings
    SetupOptions setup;
};

void add_view_options(CLI::App& command, ViewOptions& options);
// The whole command line of veloxa-viewer, for it and for what is made from it; `app` is new.
void add_viewer(CLI::App& app, ViewOptions& options);
// The arguments that these options came from.
std::vector<std::string> view_arguments(const ViewOptions& options);

}  // namespace veloxa
