#include "ViewOptions.h"

#include "Options.h"
#include "Version.h"

namespace veloxa {

namespace {

constexpr const char* kViewerFooter =
    "Environment: DISPLAY or WAYLAND_DISPLAY names the screen, QT_SCALE_FACTOR scales the window; OCIO, "
    "VELOXA_LANES and VELOXA_PLUGIN_PATH count as for `veloxa`.\n"
    "Exit status: 0 when the window was closed, 1 when it could not be opened, 2 for bad usage.";

}  // namespace

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

void add_viewer(CLI::App& app, ViewOptions& options) {
    app.name("veloxa-viewer");
    app.description("Interactive keyer for stills and image sequences.");
    add_view_options(app, options);
    app.set_version_flag(
        "--version", [] { return version_text(false); }, "Print the version and exit");
    app.footer(std::string(kSetupOrder) + "\n" + kViewerFooter);
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
