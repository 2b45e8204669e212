#include "Program.h"

#include <memory>

#include "Version.h"

namespace veloxa {

namespace {

constexpr const char* kFooter =
    "`veloxa help COMMAND` tells of a command, as COMMAND --help does. Errors go to standard error as "
    "veloxa: FILE: what is wrong.\n"
    "Environment: VELOXA_LANES, one of scalar, sse2, avx2 and avx512, asks for a lower form of the "
    "arithmetic than the processor has; VELOXA_PLUGIN_PATH lists folders, by colons, where the keyer's "
    "module is looked for first.\n"
    "Exit status: 0 when everything was done, 1 when something failed, 2 for bad usage, 75 when another try "
    "may mend what failed, as with a full disk, 130 when interrupted.";

void add_version(CLI::App& app) {
    auto verbose = std::make_shared<bool>(false);
    // Before --version, whose callback ends the parsing and looks at it.
    CLI::Option* const more =
        app.add_flag("--verbose", *verbose,
                     "With --version: also the compiler, the form of the arithmetic, the formats of files");
    CLI::Option* const version = app.set_version_flag(
        "--version", [verbose] { return version_text(*verbose); }, "Print the version and exit");
    more->needs(version);
}

}  // namespace

void add_program(CLI::App& app, Run& run) {
    app.name("veloxa");
    app.description("Colour-difference keyer for stills and image sequences.");
    add_version(app);
    app.require_subcommand(1);
    for (const auto add :
         {add_key_command, add_analyse_command, add_knobs_command, add_controls_command, add_spaces_command,
          add_cleanplate_command, add_tune_command, add_view_command, add_plate_command, add_compare_command,
          add_score_command, add_farm_command, add_help_command}) {
        add(app, run);
    }
    app.footer(kFooter);  // last, for commands without one would take it over
}

}  // namespace veloxa
