// veloxa help: what --help prints, of the program or of one of its commands.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "Terminal.h"
#include "Usage.h"
#include "shot/Errors.h"

namespace veloxa {

void add_help_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("help", "Tell how a command is used.");
    auto names = std::make_shared<std::vector<std::string>>();
    command->add_option("COMMAND", *names, "Which; the program as a whole without it")
        ->option_text("COMMAND ...");
    command->callback([names, &app, &run] {
        run = [names, &app] {
            // app.help() would be that of this command, which was chosen.
            if (names->empty()) {
                print(app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal));
                return kExitOk;
            }
            const CLI::App* found = &app;
            std::string before;
            for (const std::string& name : *names) {
                before += (before.empty() ? "" : " ") + found->get_name();
                const auto there = found->get_subcommands({});
                const auto next = std::ranges::find(there, name, &CLI::App::get_name);
                if (next == there.end()) throw UsageError(no_such_command(*found, name));
                found = *next;
            }
            print(found->help(before));
            return kExitOk;
        };
    });
}

}  // namespace veloxa
