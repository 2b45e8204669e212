// veloxa help: what --help prints, of the program or of one of its commands.
#include <memory>
#include <string>
#include <utility>

#include "Commands.h"
#include "Terminal.h"
#include "Usage.h"
#include "shot/Errors.h"

namespace veloxa {

void add_help_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("help", "Tell how a command is used.");
    auto name = std::make_shared<std::string>();
    command->add_option("COMMAND", *name, "Which; the program as a whole without it");
    command->callback([name, &app, &run] {
        run = [name, &app] {
            // app.help() would be that of this command, which was chosen.
            if (name->empty()) {
                print(app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal));
                return kExitOk;
            }
            for (const CLI::App* found : std::as_const(app).get_subcommands({})) {
                if (found->get_name() != *name) continue;
                print(found->help(app.get_name()));
                return kExitOk;
            }
            throw UsageError(no_such_command(app, *name));
        };
    });
}

}  // namespace veloxa
