// veloxa controls: the controls that a node's knobs lead to, as a listing or as a script of commands.
#include <algorithm>
#include <charconv>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "Commands.h"
#include "Options.h"
#include "Terminal.h"
#include "shot/files/AtomicFile.h"
#include "shot/node/Node.h"

namespace veloxa {

namespace {

struct Options {
    KnobSettings settings;
    std::string output;
    bool trace = false;
    bool json = false;
    bool overwrite = false;
};

// [{"index", "name", "value"}] of a listing, whose lines stand in the order of the indices.
std::string json_of(std::string_view listing) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    while (!listing.empty()) {
        const std::string_view line = listing.substr(0, listing.find('\n'));
        listing.remove_prefix(std::min(line.size() + 1, listing.size()));
        const std::string_view stored = line.substr(0, line.find('\t'));
        int value = 0;
        std::from_chars(stored.data(), stored.data() + stored.size(), value);
        all.push_back({{"index", all.size()}, {"name", line.substr(stored.size() + 1)}, {"value", value}});
    }
    return all.dump(2) + "\n";
}

int list_controls(const Options& options) {
    Node node;
    node.apply(options.settings, caller_for(false));
    // The node copies its knobs when it validates; without it the controls are those that it was made with.
    if (!options.settings.script.empty() || !options.settings.sets.empty()) node.image().validate(true);
    std::string text = node.image().diagnostic(options.trace ? "trace" : "controls");
    if (options.json) text = json_of(text);
    if (!options.output.empty()) {
        write_text(options.output, text, options.overwrite);
    } else {
        print(text);
    }
    return kExitOk;
}

}  // namespace

void add_controls_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("controls", "List the 250 controls, or trace them as commands.");
    command->footer(
        "The listing has a line a control: its stored value, a tab, its name. With --script or --set, in "
        "this order, the knobs are set and copied into the controls first, as for keying; without them the "
        "controls are those of a "
        "new node, before its first frame.");
    auto options = std::make_shared<Options>();
    add_knob_options(*command, options->settings);
    CLI::Option* const trace =
        command->add_flag("--trace", options->trace, "As a script of set commands instead");
    command->add_flag("--json", options->json, "As a JSON array of index, name and value")->excludes(trace);
    command->add_option("-o,--output", options->output, "Where to write; standard output without it")
        ->type_name("FILE");
    command->add_flag("--overwrite", options->overwrite, "Replace a file that exists");
    command->callback([options, &run] { run = [options] { return list_controls(*options); }; });
}

}  // namespace veloxa
