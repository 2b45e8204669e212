// The program: reads the command line and runs the subcommand that it names.
#include <exception>
#include <iostream>
#include <string>

#include "Commands.h"
#include "Signals.h"
#include "Terminal.h"
#include "shot/Errors.h"
#include "shot/files/ImageLibrary.h"

namespace {

// The parser's own message, but for a command that is missing or unknown.
std::string usage_message(const CLI::App& app, const CLI::ParseError& error, const std::string& first) {
    const auto chosen = app.get_subcommands();
    if (!chosen.empty()) {
        return std::string(error.what()) + "; see veloxa " + chosen.front()->get_name() + " --help";
    }
    std::string names;
    for (const CLI::App* command : app.get_subcommands({})) {
        names += (names.empty() ? "" : ", ") + command->get_name();
    }
    if (first.starts_with("-")) return first + ": a command comes first: " + names + "; see veloxa --help";
    if (first.empty()) return "a command is needed: " + names + "; see veloxa --help";
    return first + ": there is no such command; there are " + names;
}

}  // namespace

int main(int argc, char** argv) {
    veloxa::silence_library();
    veloxa::report_aborts();
    CLI::App app("Colour-difference keyer for stills and image sequences.", "veloxa");
    app.set_version_flag("--version", "veloxa " VELOXA_VERSION);
    app.require_subcommand(1);
    veloxa::Run run;
    for (const auto add :
         {veloxa::add_key_command, veloxa::add_analyse_command, veloxa::add_knobs_command,
          veloxa::add_controls_command, veloxa::add_spaces_command, veloxa::add_cleanplate_command,
          veloxa::add_tune_command, veloxa::add_plate_command, veloxa::add_compare_command,
          veloxa::add_score_command}) {
        add(app, run);
    }
    try {
        app.parse(argc, argv);
        return run();
    } catch (const CLI::ParseError& error) {
        // --help and --version arrive here too, as errors of status 0.
        if (error.get_exit_code() == 0) return app.exit(error);
        veloxa::report(usage_message(app, error, argc > 1 ? argv[1] : ""));
        return veloxa::kExitUsage;
    } catch (const veloxa::Interrupted& error) {
        veloxa::report(error.what());
        return veloxa::kExitInterrupted;
    } catch (const veloxa::UsageError& error) {
        veloxa::report(error.what());
        return veloxa::kExitUsage;
    } catch (const std::exception& error) {
        veloxa::report(error.what());
        return veloxa::kExitFailure;
    }
}
