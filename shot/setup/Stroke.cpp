#include "shot/setup/Stroke.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "shot/Errors.h"
#include "shot/Numbers.h"
#include "shot/setup/ScreenChoice.h"

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
    std::string names;
    for (const auto& knob : panel.knobs()) {
        if (knob->kind() != Knob::Kind::kToolButton) continue;
        if (plain_name(knob->name()) == plain_name(name)) return *knob;
        names += (names.empty() ? "" : ", ") + knob->name().substr(kToolPrefix.size());
    }
    throw UsageError("--stroke " + name + ": there is no such tool; there are " + names);
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
    return {&tool_named(panel, name), parse_box("--stroke", text.substr(equals + 1)), frame};
}

ToolReport apply_stroke(const Node& node, const Stroke& stroke) {
    const Box& box = stroke.box;
    int value = 4;
    for (const int edge : {box.x, box.y, box.r, box.t}) stroke.tool->set_value(edge, value++);
    return node.use_tool(*stroke.tool).front();
}

std::vector<ToolReport> set_up_automatically(Node& node, const std::string& file) {
    const Hold hold(node.named());
    std::vector<ToolReport> reports = node.use_tool(node.panel().get("set_up"));
    if (!reports.empty() && !reports.back().failure.empty()) throw Error(file, reports.back().failure);
    return reports;
}

}  // namespace veloxa
