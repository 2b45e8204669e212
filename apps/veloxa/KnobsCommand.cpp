// veloxa knobs: what the node's panel holds, as a table or as JSON.
#include <charconv>
#include <nlohmann/json.hpp>
#include <string>

#include "Commands.h"
#include "Terminal.h"
#include "ZoImage/KnobDisplay.h"
#include "shot/node/Node.h"

namespace veloxa {

using namespace Zo::Image;
using nlohmann::ordered_json;

namespace {

ordered_json default_of(const Knob& knob) {
    if (knob.kind() == Knob::Kind::kBool) return knob.default_value() != 0.0;
    if (knob.kind() == Knob::Kind::kMenu) {
        const auto item = static_cast<std::size_t>(knob.default_value());
        return item < knob.items().size() ? ordered_json(knob.items()[item]) : ordered_json(item);
    }
    if (knob.value_count() == 1) return shown(knob, knob.default_value());
    ordered_json values = ordered_json::array();
    for (int i = 0; i < knob.value_count(); ++i) values.push_back(shown(knob, knob.default_value(i)));
    return values;
}

ordered_json describe(const Knob& knob) {
    const Knob& target = knob.target();
    ordered_json entry;
    entry["name"] = knob.name();
    entry["label"] = knob.label();
    entry["kind"] = kind_name(knob.kind());
    if (!knob.tab().empty()) entry["tab"] = knob.tab();
    if (knob.takes_value() && target.value_count() > 0) entry["default"] = default_of(target);
    if (target.range()) {
        entry["min"] = target.range()->low;
        entry["max"] = target.range()->high;
    }
    if (!target.items().empty()) entry["items"] = target.items();
    if (!knob.tooltip().empty()) entry["tooltip"] = knob.tooltip();
    return entry;
}

// Spacers, captions and separators have no name.
ordered_json describe_all(const KnobPanel& panel) {
    ordered_json list = ordered_json::array();
    for (const auto& knob : panel.knobs()) {
        if (!knob->name().empty()) list.push_back(describe(*knob));
    }
    return list;
}

std::string joined(const ordered_json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_float()) {
        char digits[32];
        return {digits, std::to_chars(digits, digits + sizeof digits, value.get<double>()).ptr};
    }
    if (!value.is_array()) return value.dump();
    std::string text;
    for (const ordered_json& part : value) text += (text.empty() ? "" : ",") + joined(part);
    return text;
}

std::string table_of(const ordered_json& list) {
    std::string table;
    for (const ordered_json& knob : list) {
        std::string line = knob["name"].get<std::string>() + "  \"" + knob["label"].get<std::string>() +
                           "\"  " + knob["kind"].get<std::string>();
        if (knob.contains("items")) line += " " + joined(knob["items"]);
        if (knob.contains("min")) line += "  " + joined(knob["min"]) + " to " + joined(knob["max"]);
        if (knob.contains("default")) line += "  default " + joined(knob["default"]);
        if (knob.contains("tab")) line += "  [" + knob["tab"].get<std::string>() + "]";
        table += line + '\n';
        if (!knob.contains("tooltip")) continue;
        std::string tooltip = "    " + plain_text(knob["tooltip"].get<std::string>());
        for (std::size_t at = tooltip.find('\n'); at != std::string::npos; at = tooltip.find('\n', at + 1)) {
            tooltip.insert(at + 1, "    ");
        }
        table += tooltip + '\n';
    }
    return table;
}

int list_knobs(bool json) {
    Node node;
    const ordered_json list = describe_all(node.panel());
    print(json ? list.dump(2) + '\n' : table_of(list));
    return kExitOk;
}

}  // namespace

void add_knobs_command(CLI::App& app, Run& run) {
    CLI::App* command =
        app.add_subcommand("knobs", "List every knob: name, label, kind, range, default, tooltip.");
    command->footer(
        "Tooltips are the panel's own; the table shows them without the markup that some are written with.");
    auto json = std::make_shared<bool>(false);
    command->add_flag("--json", *json, "As a JSON array in panel order");
    command->callback([json, &run] { run = [json] { return list_knobs(*json); }; });
}

}  // namespace veloxa
