// The program: reads the command line and runs the subcommand that it names.
#include <exception>
#include <iostream>

#include "Commands.h"
#include "Program.h"
#include "Signals.h"
#include "Terminal.h"
#include "Usage.h"
#include "shot/Errors.h"

int main(int argc, char** argv) {
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
        veloxa::report(veloxa::usage_message(app, error, argc > 1 ? argv[1] : ""));
        return veloxa::kExitUsage;
    } catch (const veloxa::Interrupted& error) {
        veloxa::report(error.what());
        return veloxa::kExitInterrupted;
    } catch (const veloxa::UsageError& error) {
        veloxa::report(error.what());
        return veloxa::kExitUsage;
    } catch (const veloxa::TryAgain& error) {
        veloxa::report(error.what());
        return veloxa::kExitTryAgain;
    } catch (const std::exception& error) {
        veloxa::report(error.what());
        return veloxa::kExitFailure;
    }
}
