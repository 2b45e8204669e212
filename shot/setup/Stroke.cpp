#include "shot/setup/Stroke.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <sstream>
#include <string_view>

#include "shot/Errors.h"
#include "shot/setup/Pick.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr std::string_view kToolPrefix = "toolbar_";

// Lower case without underscores, so that "add_overlay" is "toolbar_addoverlay".
std::string plain_name(std::string_view name) {
    if (name.starts_with(kToolPrefix)) name.remove_prefix(kToolPrefix.size());
    std::string plain;
    for (const char c : name) {
        if (c != '_') plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return plain;
}

std::vector<std::string> fields_of(const std::string& line) {
    std::vector<std::string> fields(1);
    for (const char c : line) {
        if (c == '\t') {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

}  // namespace

Knob& tool_named(const KnobPanel& panel, const std::string& name) {
    std::string names;
    for (const auto& knob : panel.knobs()) {
        if (knob->kind() != Knob::Kind::kToolButton) continue;
        if (plain_name(knob->name()) == plain_name(name)) return *knob;
        names += (names.empty() ? "" : ", ") + knob->name().substr(kToolPrefix.size());
    }
    throw UsageError("--stroke " + name + ": there is no such tool; there are " + names);
}

Stroke parse_stroke(const KnobPanel& panel, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw UsageError("--stroke " + text + ": expected TOOL=X,Y,R,T or TOOL@FRAME=X,Y,R,T");
    }
    std::string name = text.substr(0, equals);
    std::optional<int> frame;
    if (const std::size_t at = name.find('@'); at != std::string::npos) {
        int number = 0;
        const char* const end = name.data() + name.size();
        const auto [rest, error] = std::from_chars(name.data() + at + 1, end, number);
        if (error != std::errc() || rest != end) {
            throw UsageError("--stroke " + text + ": expected a frame's number after @");
        }
        frame = number;
        name.resize(at);
    }
    return {&tool_named(panel, name), parse_box("--stroke", text.substr(equals + 1)), frame};
}

ToolReport apply_stroke(const Node& node, const Stroke& stroke) {
    const Box& box = stroke.box;
    int value = 4;
    for (const int edge : {box.x, box.y, box.r, box.t}) stroke.tool->set_value(edge, value++);
    stroke.tool->changed();

    ToolReport report;
    report.tool = stroke.tool->name();
    report.box = box;
    std::istringstream lines(node.image().diagnostic("tool"));
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> fields = fields_of(line);
        if (fields[0] == "knob") {
            report.changes.push_back({fields.at(1), fields.at(2), fields.at(3)});
        } else if (fields[0] == "samples") {
            report.satisfied = std::stoi(fields.at(1));
            report.unsatisfied = std::stoi(fields.at(2));
            report.unusable = std::stoi(fields.at(3));
        } else if (fields[0] == "held") {
            report.held.push_back(fields.at(1));
        } else if (fields[0] == "note") {
            report.notes.push_back(fields.at(1));
        }
    }
    return report;
}

}  // namespace veloxa
