// The options of `veloxa key`, for it and for the commands that look after what it makes.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Options.h"
#include "Signals.h"
#include "shot/sequence/KeyPipeline.h"
#include "shot/setup/KeySetup.h"
#include "shot/setup/ShotModel.h"

namespace veloxa {

// As the command line gives them.
struct KeyOptions {
    SetupOptions setup;
    std::vector<std::string> outputs;
    std::string save_script;
    std::string shot;
    std::string shot_frames;
    std::string stage;
    FormatOptions format;
    std::string keep;
    std::string chunk;
    std::string fingerprint;
    int threads = 0;
    bool no_provenance = false;
    bool stats = false;
    bool json = false;
    bool dry_run = false;
    bool claim = false;
    bool resume = false;
    bool overwrite = false;
    bool quiet = false;
    std::string progress = "bar";
    int grace = kGraceSeconds;
};

void add_key_options(CLI::App& command, KeyOptions& options);

// What is to be made of a shot's frames, of --chunk's alone where that is given; nothing for a chunk without
// frames. Throws UsageError.
std::optional<KeyPlan> plan_for(const KeyOptions& options, const FrameRange& frames);

// The frames that the shot comes from, or its file.
ShotSource shot_source_of(const KeyOptions& options, const FrameRange& frames);

// Gives the plan the fingerprints of what is asked for; before anything is set up. Throws as fingerprints_of.
void add_fingerprints(KeyPlan& plan, const KeyOptions& options, KeySetup& setup, const Caller& caller);

}  // namespace veloxa
