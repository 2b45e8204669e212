#include "ViewOptions.h"

#include "Options.h"

namespace veloxa {

void add_view_options(CLI::App& command, ViewOptions& options) {
    command
        .add_option("PLATE", options.plates,
                    "What --fg takes: a frame stands for the sequence that it belongs to. Or a script that "
                    "the viewer saved, which names its files")
        ->type_name("FILE")
        ->option_text("FILE ...");
    add_setup_options(command, options.setup);
    command.get_option("--fg")->required(false);
    command.footer(kSetupOrder);
}

std::vector<std::string> view_arguments(const ViewOptions& options) {
    std::vector<std::string> arguments;
    const auto add = [&](const std::string& name, const std::string& value) {
        if (!value.empty()) arguments.insert(arguments.end(), {name, value});
    };
    const SetupOptions& setup = options.setup;
    for (std::size_t n = 0; n < kInputCount; ++n) add(std::string("--") + kInputNames[n], setup.inputs[n]);
    add("--fit", setup.fit);
    add("--in-space", setup.colour.in_space);
    add("--out-space", setup.colour.out_space);
    add("--frames", setup.frames);
    add("--script", setup.settings.script);
    for (const std::string& set : setup.settings.sets) add("--set", set);
    add("--pick", setup.screen.pick);
    add("--screen", setup.screen.screen);
    if (setup.automatic) arguments.emplace_back("--auto");
    for (const std::string& stroke : setup.strokes) add("--stroke", stroke);
    if (!options.plates.empty()) arguments.emplace_back("--");
    arguments.insert(arguments.end(), options.plates.begin(), options.plates.end());
    return arguments;
}

}  // namespace veloxa
