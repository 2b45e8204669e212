// The program: reads the command line and runs the subcommand that it names.
#include <exception>
#include <iostream>
#include <string>

#include "Commands.h"
#include "Errors.h"

int main(int argc, char** argv) {
    CLI::App app("Colour-difference keyer for stills and image sequences.", "veloxa");
    app.set_version_flag("--version", "veloxa " VELOXA_VERSION);
    app.require_subcommand(1);
    veloxa::Run run;
    veloxa::add_key_command(app, run);
    veloxa::add_knobs_command(app, run);
    veloxa::add_plate_command(app, run);
    veloxa::add_compare_command(app, run);
    try {
        app.parse(argc, argv);
        return run();
    } catch (const CLI::ParseError& error) {
        // --help and --version arrive here too, as errors of status 0.
        if (error.get_exit_code() == 0) return app.exit(error);
        veloxa::report(error.what());
        return veloxa::kExitUsage;
    } catch (const veloxa::Interrupted&) {
        return veloxa::kExitInterrupted;
    } catch (const veloxa::Error& error) {
        veloxa::report(error.what());
        return error.status();
    } catch (const std::exception& error) {
        veloxa::report(error.what());
        return veloxa::kExitFailure;
    }
}
