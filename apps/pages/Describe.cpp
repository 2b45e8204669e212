#include "Describe.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <string_view>

#include "ZoImage/Knob.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

std::vector<std::string> split(const std::string& text, char at) {
    std::vector<std::string> parts;
    std::istringstream rest(text);
    for (std::string part; std::getline(rest, part, at);) parts.push_back(part);
    return parts;
}

// The names that the commands' options use for their values.
Value value_of(const std::string& name) {
    static const std::map<std::string, Value, std::less<>> kValues{
        {"FILE", Value::kFile},       {"NAME=FILE", Value::kNamedFile}, {"DIR", Value::kFolder},
        {"KNOB=VALUE", Value::kKnob}, {"TOOL=X,Y,R,T", Value::kTool},   {"MEMBER", Value::kStage},
        {"COMMAND", Value::kCommand},
    };
    const auto found = kValues.find(name);
    if (found != kValues.end()) return found->second;
    return name.find("=FILE") != std::string::npos  ? Value::kNamedFile
           : name.find("FILE") != std::string::npos ? Value::kFile
                                                    : Value::kOther;
}

// The parser's word for a value is NAME, then what checks it: NAME:{a,b} or NAME:INT in [1 - 9].
void read_value(const std::string& word, OptionText& option) {
    const std::size_t check = word.find(':');
    option.value_name = word.substr(0, check);
    if (option.positional && option.value_name == "TEXT") option.value_name = option.names.front();
    option.value = value_of(option.value_name);
    if (option.positional && option.value == Value::kOther) option.value = Value::kFile;
    if (check == std::string::npos) return;
    if (const std::size_t open = word.find('{', check); open != std::string::npos) {
        option.choices = split(word.substr(open + 1, word.find('}', open) - open - 1), ',');
        option.value = Value::kChoice;
    } else if (const std::size_t range = word.find('[', check); range != std::string::npos) {
        const std::string limits = word.substr(range + 1, word.find(']', range) - range - 1);
        const std::size_t dash = limits.find(" - ");
        if (dash != std::string::npos)
            option.limits = limits.substr(0, dash) + " to " + limits.substr(dash + 3);
    }
}

OptionText describe(const CLI::Option& source) {
    OptionText option;
    option.positional = source.get_positional();
    if (option.positional) {
        option.names = {source.get_name(true)};
    } else {
        for (const std::string& name : source.get_snames()) option.names.push_back("-" + name);
        for (const std::string& name : source.get_lnames()) option.names.push_back("--" + name);
    }
    option.required = source.get_required();
    option.repeats = source.get_expected_max() > 1;
    if (source.get_items_expected_max() > 0) read_value(source.get_type_name(), option);
    option.preset = source.get_default_str();
    option.meaning = source.get_description();
    option.group = source.get_group();
    for (const CLI::Option* other : source.get_excludes()) {
        for (const std::string& name : other->get_lnames()) option.excludes.push_back("--" + name);
    }
    return option;
}

CommandText describe(const CLI::App& command, const std::string& name) {
    CommandText text{name, command.get_description(), split(command.get_footer(), '\n'), {}, {}};
    if (command.get_parent()) {
        for (const CLI::App* within : command.get_subcommands({}))
            text.commands.push_back(describe(*within, name + " " + within->get_name()));
    }
    for (const CLI::Option* option : command.get_options({})) {
        if (!option->get_group().empty()) text.options.push_back(describe(*option));
    }
    return text;
}

std::vector<std::string> values_of(const Knob& knob) {
    if (knob.kind() == Knob::Kind::kBool) return {"true", "false"};
    return knob.kind() == Knob::Kind::kMenu ? knob.items() : std::vector<std::string>{};
}

}  // namespace

CommandLine describe(const CLI::App& app, const Node& node) {
    constexpr std::string_view kToolbar = "toolbar_";
    CommandLine all;
    all.name = app.get_name();
    all.program = describe(app, "");
    for (const CLI::App* command : app.get_subcommands({}))
        all.commands.push_back(describe(*command, command->get_name()));
    for (const auto& knob : node.panel().knobs()) {
        if (knob->name().empty()) continue;
        if (knob->kind() == Knob::Kind::kToolButton) {
            const bool prefixed = knob->name().starts_with(kToolbar);
            all.tools.push_back(knob->name().substr(prefixed ? kToolbar.size() : 0));
        } else if (knob->takes_value() && knob->kind() != Knob::Kind::kCustom) {
            all.knobs.push_back({knob->name(), values_of(knob->target())});
        }
    }
    all.stages = node.members();
    return all;
}

}  // namespace veloxa
