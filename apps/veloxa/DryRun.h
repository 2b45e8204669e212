// --dry-run, of several commands.
#pragma once

#include <string>
#include <vector>

#include "Options.h"
#include "shot/setup/Preview.h"

namespace veloxa {

void add_dry_run_option(CLI::App& command, bool& dry_run);

// The inputs of a set-up by their names, the foreground first.
std::vector<NamedInput> inputs_of(const FrameLoader::Names& names);

// What a set-up reads for these frames, and sets.
Preview preview_of(KeySetup& setup, const SetupOptions& options, const FrameRange& frames);

// Prints what would be done, then what is in its way. Returns the exit status.
int show(const Preview& preview);

}  // namespace veloxa
