// Options that several commands share.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "shot/files/ImageFile.h"
#include "shot/setup/KeySetup.h"

namespace veloxa {

// For the footers of commands with the options of a set-up: the order in which these set knobs.
inline constexpr const char* kSetupOrder =
    "Knobs are set in this order: --script, --set, --pick or --screen, --auto, --stroke; a first stroke of "
    "the "
    "screen tool comes before --auto. --auto leaves alone what --script and --set name. `veloxa knobs` lists "
    "them.";

// --script and --set.
void add_knob_options(CLI::App& command, KnobSettings& settings);
// --pick and --screen; `image` says which image they look at.
void add_screen_options(CLI::App& command, ScreenOptions& options, const std::string& image);

// Those of a set-up, the above among them.
void add_setup_options(CLI::App& command, SetupOptions& options);
// --in-space and --out-space.
void add_colour_options(CLI::App& command, ColourOptions& options);
void add_frames_option(CLI::App& command, std::string& frames);
void add_threads_option(CLI::App& command, int& threads);

// As the command line gives them: --depth, --compression, --quality, --tiles.
struct FormatOptions {
    std::string depth;
    std::string compression;
    int quality = 0;
    std::string tiles;

    // Throws UsageError.
    void apply_to(WriteOptions& how) const;
};
void add_format_options(CLI::App& command, FormatOptions& options);

}  // namespace veloxa
