#include "NodeOptions.h"

#include "ScreenChoice.h"

namespace veloxa {

void add_knob_options(CLI::App& command, KnobSettings& settings) {
    command.add_option("--script", settings.script, "Set knobs from a script")->type_name("FILE");
    command.add_option("--set", settings.sets, "Set a knob: numbers by commas, menu items by name")
        ->type_name("KNOB=VALUE")
        ->allow_extra_args(false);
}

void add_screen_options(CLI::App& command, ScreenOptions& options, const std::string& image) {
    CLI::Option* const pick =
        command.add_option("--pick", options.pick, "Set screen_color to the mean of a box of " + image)
            ->type_name("X,Y,R,T");
    command
        .add_option("--screen", options.screen,
                    "Find the backing in " + image +
                        ": of whatever colour (auto, as when nothing sets screen_color) or of this one")
        ->check(CLI::IsMember(kScreenChoices))
        ->excludes(pick);
}

}  // namespace veloxa
