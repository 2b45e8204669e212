// The subcommands of the program, one file each.
//
// Each function adds its subcommand to `app` and puts a callback on it that stores in `run` what is to be
// done; main calls `run` once after parsing. `run` returns the exit status, or throws Error (Errors.h).
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace veloxa {

using Run = std::function<int()>;

CLI::App* add_key_command(CLI::App& app, Run& run);
CLI::App* add_knobs_command(CLI::App& app, Run& run);
CLI::App* add_controls_command(CLI::App& app, Run& run);
CLI::App* add_cleanplate_command(CLI::App& app, Run& run);
CLI::App* add_tune_command(CLI::App& app, Run& run);
CLI::App* add_plate_command(CLI::App& app, Run& run);
CLI::App* add_compare_command(CLI::App& app, Run& run);

}  // namespace veloxa
