// The program: reads the command line and runs the subcommand that it names.
#include <exception>
#include <iostream>
#include <string>

#include "Commands.h"
#include "Program.h"
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
    const std::string names = veloxa::command_names(app);
    if (first.starts_with("-")) return first + ": a command comes first: " + names + "; see veloxa --help";
    if (first.empty()) return "a command is needed: " + names + "; see veloxa --help";
    return first + ": there is no such command; there are " + names;
}

}  // namespace

int main(int argc, char** argv) {
    veloxa::silence_library();
    veloxa::report_aborts();
    CLI::App app;
    veloxa::Run run;
    veloxa::add_program(app, run);
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
