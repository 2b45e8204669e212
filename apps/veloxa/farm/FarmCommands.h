// The commands below `veloxa farm`, one file each; see Commands.h.
#pragma once

#include "Commands.h"

namespace veloxa {

void add_farm_check_command(CLI::App& farm, Run& run);
// slurm, openjd and make.
void add_farm_job_commands(CLI::App& farm, Run& run);

}  // namespace veloxa
