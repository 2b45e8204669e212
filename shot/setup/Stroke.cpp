#include "shot/setup/Stroke.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "ZoImage/KnobValues.h"
#include "ZoImage/NearestName.h"
#include "shot/Errors.h"
#include "shot/Numbers.h"
#include "shot/files/EncodingGuess.h"

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

Knob& tool_named(const KnobPanel& panel, const std::string& name) {
    std::vector<std::string> names;
    for (const auto& knob : panel.knobs()) {
        if (knob->kind() != Knob::Kind::kToolButton) continue;
        if (plain_name(knob->name()) == plain_name(name)) return *knob;
        names.push_back(knob->name().substr(kToolPrefix.size()));
    }
    throw UsageError("--stroke " + name + ": there is no such tool" + choices(plain_name(name), names));
}

// "--stroke", and which of several areas.
std::string area_of(const std::string& option, std::size_t number, std::size_t count) {
    if (count == 1) return option;
    return option + ", area " + std::to_string(number + 1) + " of " + std::to_string(count);
}

std::vector<Box> parse_areas(std::string_view text) {
    const auto count = static_cast<std::size_t>(std::ranges::count(text, '+')) + 1;
    std::vector<Box> areas;
    while (areas.size() < count) {
        const std::size_t end = std::min(text.find('+'), text.size());
        const std::string option = area_of("--stroke", areas.size(), count) + (count == 1 ? "" : ":");
        areas.push_back(parse_box(option, std::string(text.substr(0, end))));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return areas;
}

// While it lives the node's tools leave these knobs alone; later strokes may turn them.
class Hold {
  public:
    explicit Hold(const std::set<Knob*>& knobs) : knobs_(knobs) { hold(true); }
    ~Hold() { hold(false); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

  private:
    void hold(bool on) const {
        for (Knob* const knob : knobs_) knob->set_flag(kKnobHeld, on);
    }

    const std::set<Knob*>& knobs_;
};

}  // namespace

Stroke parse_stroke(const KnobPanel& panel, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw UsageError("--stroke " + text + ": expected TOOL=X,Y,R,T or TOOL@FRAME=X,Y,R,T");
    }
    std::string name = text.substr(0, equals);
    std::optional<int> frame;
    if (const std::size_t at = name.find('@'); at != std::string::npos) {
        int number = 0;
        std::string_view rest = std::string_view(name).substr(at + 1);
        if (!take(rest, number) || !rest.empty()) {
            throw UsageError("--stroke " + text + ": expected a frame's number after @");
        }
        frame = number;
        name.resize(at);
    }
    return {&tool_named(panel, name), parse_areas(std::string_view(text).substr(equals + 1)), frame};
}

void check_inside(const std::string& option, const Image& image, const Stroke& stroke) {
    for (std::size_t n = 0; n < stroke.areas.size(); ++n) {
        check_inside(area_of(option, n, stroke.areas.size()), image, stroke.areas[n]);
    }
}

ToolReport apply_stroke(const Node& node, const Stroke& stroke) {
    stroke.tool->stroke(stroke.areas);
    return node.use_tool(*stroke.tool).front();
}

bool turns_difference(const Stroke& stroke) {
    static const std::set<std::string> kNames{"addoverlay", "removeoverlay", "addmatte", "restorespill",
                                              "removespill"};
    return kNames.contains(plain_name(stroke.tool->name()));
}

std::vector<ToolReport> set_up_automatically(Node& node, const NamedImage& from,
                                             const std::vector<Stroke>& strokes) {
    std::set<Knob*> held = node.named();
    const auto asks = std::ranges::find_if(strokes, turns_difference);
    if (asks != strokes.end()) held.insert(&node.panel().get("unmix_method"));
    const Hold hold(held);
    Knob& encoding = node.panel().get("unmix_encoding");
    Knob* const only = &encoding;
    const KnobValues before({&only, 1});
    ToolReport guessed;
    guessed.tool = "auto encoding";
    guessed.box = from.image->info.format.box;
    if (encoding.flag(kKnobHeld)) {
        guessed.notes.push_back("unmix_encoding stays at " + encoding.text() + ", as set");
    } else {
        const EncodingGuess guess = guess_encoding(from.image->header, from.file);
        node.panel().set_from_text(encoding.name(), guess.name);
        guessed.changes = before.changes();
        guessed.notes.push_back("unmix_encoding " + guess.name + ": " + from.file + " is " + guess.why);
    }
    std::vector<ToolReport> reports = node.use_tool(node.panel().get("set_up"));
    if (!reports.empty() && !reports.back().failure.empty()) throw Error(from.file, reports.back().failure);
    if (node.panel().get("unmix_method").text() == "unmix") {
        reports.insert(reports.begin(), std::move(guessed));
        return reports;
    }
    before.restore();
    if (asks != strokes.end() && !node.named().contains(&node.panel().get("unmix_method"))) {
        reports.back().notes.push_back("the stroke " + plain_name(asks->tool->name()) +
                                       " is one of the colour difference");
    }
    return reports;
}

}  // namespace veloxa
