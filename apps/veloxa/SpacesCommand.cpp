// veloxa spaces: the colour spaces that --in-space and --out-space take, as a table or as JSON.
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Commands.h"
#include "Terminal.h"
#include "shot/colour/ColourConfig.h"

namespace veloxa {

using nlohmann::ordered_json;

namespace {

// {"file": null or $OCIO's, "scene_linear": name, "spaces": [{"name", "aliases", "description", "data"}],
// "displays": [{"name", "views"}]}.
std::string json_of(const ColourConfig& config) {
    ordered_json list;
    list["file"] = config.file().empty() ? ordered_json() : ordered_json(config.file());
    list["scene_linear"] = config.scene_linear();
    for (const ColourSpace& space : config.spaces()) {
        list["spaces"].push_back({{"name", space.name},
                                  {"aliases", space.aliases},
                                  {"description", space.description},
                                  {"data", space.data}});
    }
    for (const ColourDisplay& display : config.displays()) {
        list["displays"].push_back({{"name", display.name}, {"views", display.views}});
    }
    return list.dump(2) + "\n";
}

std::string table_of(const ColourConfig& config) {
    const auto spaces = config.spaces();
    std::size_t width = 0;
    for (const ColourSpace& space : spaces) width = std::max(width, space.name.size());
    const std::string working = config.scene_linear();
    std::string table;
    for (const ColourSpace& space : spaces) {
        table += space.name + std::string(width - space.name.size() + 2, ' ') + space.description;
        if (space.name == working) table += " (scene linear: what is keyed)";
        table += '\n';
    }
    return table;
}

}  // namespace

void add_spaces_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("spaces", "List the colour spaces.");
    command->footer(
        "They are those of the OpenColorIO configuration that $OCIO names, else of a set of the program's "
        "own. Upper "
        "and lower case are the same, and aliases, which --json lists, count as names.");
    auto json = std::make_shared<bool>(false);
    command->add_flag("--json", *json, "As JSON, with aliases, displays and views");
    command->callback([json, &run] {
        run = [json] {
            const ColourConfig config = ColourConfig::load();
            print(*json ? json_of(config) : table_of(config));
            return kExitOk;
        };
    });
}

}  // namespace veloxa
