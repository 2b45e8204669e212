// veloxa farm: what goes with keys that several processes or hosts share.
#include "farm/FarmCommands.h"

namespace veloxa {

void add_farm_command(CLI::App& app, Run& run) {
    CLI::App* farm = app.add_subcommand("farm", "Look after keys that many processes make parts of.");
    farm->require_subcommand(1);
    for (const auto add : {add_farm_check_command, add_farm_job_commands}) add(*farm, run);
}

}  // namespace veloxa
