// The subcommands of the program, one file each.
//
// Each function adds its subcommand to `app` and puts a callback on it that stores in `run` what is to be
// done; main calls `run` once after parsing. `run` returns the exit status, or throws what shot/Errors.h has.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace veloxa {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitTryAgain = 75;  // not all was done, and another try may mend it
inline constexpr int kExitInterrupted = 130;

using Run = std::function<int()>;

void add_key_command(CLI::App& app, Run& run);
void add_analyse_command(CLI::App& app, Run& run);
void add_knobs_command(CLI::App& app, Run& run);
void add_controls_command(CLI::App& app, Run& run);
void add_spaces_command(CLI::App& app, Run& run);
void add_cleanplate_command(CLI::App& app, Run& run);
void add_tune_command(CLI::App& app, Run& run);
void add_view_command(CLI::App& app, Run& run);
void add_plate_command(CLI::App& app, Run& run);
void add_compare_command(CLI::App& app, Run& run);
void add_score_command(CLI::App& app, Run& run);
void add_farm_command(CLI::App& app, Run& run);
void add_help_command(CLI::App& app, Run& run);

}  // namespace veloxa
