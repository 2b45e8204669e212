#include "instance/Editor.h"

#include <algorithm>

#include "ZoImage/Convert.h"
#include "ZoImage/Script.h"
#include "host/Host.h"
#include "images/Identity.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

constexpr RenderScale kFullSize{1.0, 1.0};

// What the user must not miss of the reports: failures, and samples that no knob could satisfy. Where the
// host has no report that they could be read in, the notes too.
std::string remarks(const std::vector<ToolReport>& reports, bool notes) {
    std::string text;
    const auto line = [&](const std::string& remark) { text += (text.empty() ? "" : "\n") + remark; };
    for (const ToolReport& report : reports) {
        if (!report.failure.empty()) line(report.failure);
        for (const std::string& note : report.notes) {
            if (notes) line(note);
        }
        const int usable = report.satisfied + report.unsatisfied;
        if (report.unsatisfied > 0) {
            line(std::to_string(report.unsatisfied) + " of " + std::to_string(usable) +
                 " samples could not be satisfied");
        }
        if (report.unusable > 0) {
            line(std::to_string(report.unusable) + " samples hold values that are not finite");
        }
    }
    return text;
}

}  // namespace

// Connects images to the node's inputs for a scope.
class Editor::Wired {
  public:
    Wired(Iop& node, const Pictures& pictures, AbortPoll& poll) : node_(node), inputs_(poll) {
        std::array<bool, kInputs> used{};
        for (std::size_t n = 0; n < kInputs; ++n) {
            used[n] = pictures[n].has_value();
            if (used[n]) inputs_[n].serve(*pictures[n], pictures[kForeground]->frame(), fresh_identity());
        }
        inputs_.connect(node_, used);
    }
    ~Wired() {
        for (std::size_t n = 0; n < kInputs; ++n) node_.set_input(static_cast<int>(n), nullptr);
    }
    Wired(const Wired&) = delete;
    Wired& operator=(const Wired&) = delete;

  private:
    Iop& node_;
    InputImages inputs_;
};

Editor::Editor(OfxImageEffectHandle effect)
    : effect_(effect),
      node_(HostThreads::offered() ? &threads_ : nullptr, &poll_.flag()),
      parameters_(effect, node_.list()),
      own_(effect),
      enabled_(node_.list().parameters().size(), -1) {}

bool Editor::is_tool(std::size_t n) const {
    const Knob& knob = *list().parameters()[n].knob;
    return knob.kind() == Knob::Kind::kToolButton || knob.flag(kKnobLooks);
}

bool Editor::is_stroked(std::size_t n) const {
    return list().parameters()[n].knob->kind() == Knob::Kind::kToolButton;
}

std::optional<std::size_t> Editor::active_tool() const {
    const std::vector<std::size_t> tools = list().tools();
    const auto number = static_cast<std::size_t>(own_.integer(kActiveTool));
    if (number == 0 || number > tools.size()) return std::nullopt;
    return tools[number - 1];
}

void Editor::activate(std::size_t n) const {
    const std::vector<std::size_t> tools = list().tools();
    const auto number = std::ranges::find(tools, n) - tools.begin() + 1;
    own_.named(kActiveTool).put(std::nullopt, static_cast<int>(number));
}

void Editor::load() {
    set_knobs(parameters_.values(std::nullopt), kFullSize);
    show_enables();
}

void Editor::follow(std::size_t n) {
    const Parameter& parameter = list().parameters()[n];
    if (set_knob(parameter, parameters_.value(n, std::nullopt), kFullSize)) parameter.knob->changed();
    show_enables();
}

void Editor::set_knobs(const Values& values, const RenderScale& scale) {
    std::vector<Knob*> changed;
    for (std::size_t n = 0; n < values.size(); ++n) {
        const Parameter& parameter = list().parameters()[n];
        if (set_knob(parameter, values[n], scale)) changed.push_back(parameter.knob);
    }
    for (Knob* const knob : changed) knob->changed();
}

void Editor::show_enables() {
    const std::vector<Parameter>& all = list().parameters();
    for (std::size_t n = 0; n < all.size(); ++n) {
        const int on = all[n].knob->enabled() ? 1 : 0;
        if (enabled_[n] == on) continue;
        enabled_[n] = on;
        parameters_.enable(n, on != 0);
    }
}

// The knobs hold sizes in pixels of the images while the work runs, as the images may be a proxy's. Whatever
// goes wrong, they hold the parameters' values afterwards.
void Editor::edit(const std::string& step, OfxTime time, const RenderScale& scale, const Work& work) try {
    const std::vector<Parameter>& all = list().parameters();
    set_knobs(parameters_.values_with_texts(time), scale);
    const KnobValues before(node_.panel());
    const Outcome outcome = work(before);
    const std::vector<Knob*> changed = before.changed();
    std::vector<std::pair<std::size_t, Value>> found;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const bool other = std::find(changed.begin(), changed.end(), all[i].knob) != changed.end();
        const bool moves = outcome.still && !all[i].knob->flag(kKnobUnscripted) && parameters_.animates(i);
        if (other || moves) found.emplace_back(i, knob_value(all[i], scale));
    }
    std::optional<ParameterSet::Edit> one;
    if (!found.empty()) one.emplace(parameters_, step);
    for (const auto& [i, value] : found) {
        if (outcome.still) parameters_.delete_keys(i);
        parameters_.set(i, value, time);
    }
    if (!found.empty() && outcome.marks) own_.set_text(kMarks, *outcome.marks);
    if (outcome.report) own_.report(*outcome.report);
    one.reset();
    load();
} catch (...) {
    load();
    throw;
}

void Editor::press(std::size_t n, OfxTime time) {
    edit(list().parameters()[n].label, time, kFullSize, [&](const KnobValues&) {
        node_.panel().press(*list().parameters()[n].knob);
        return Outcome{};
    });
}

std::string Editor::use_tool(std::size_t n, OfxTime time, const PixelGrid& grid, const Pictures& pictures,
                             const std::vector<Box>& areas) {
    const Parameter& parameter = list().parameters()[n];
    Knob& tool = *parameter.knob;
    poll_.begin(effect_);
    Iop& node = node_.image();
    const Values present = parameters_.values_with_texts(time);
    if (const auto known = memory_.find(present)) node.recall(known);
    memory_.keep(present, node.tool_memory());
    edit(parameter.label, time, grid.scale, [&](const KnobValues& before) {
        const Wired wired(node, pictures, poll_);
        if (is_stroked(n)) {
            tool.stroke(areas);
            tool.activate();
        }
        tool.changed();
        if (poll_.flag().raised()) throw Failure(kOfxStatFailed);  // the host does not want it any more
        Outcome outcome = outcome_of_tools(time);
        if (is_stroked(n)) {
            const Image& plate = *pictures[kForeground];
            outcome.marks =
                write_marks(marks_with(parameter.name, time, grid, plate, areas, before.changed()));
        }
        return outcome;
    });
    memory_.keep(parameters_.values_with_texts(time), node.tool_memory());
    return remarks(node.tool_reports(), !own_.can_report());
}

Editor::Outcome Editor::outcome_of_tools(OfxTime time) const {
    std::string text;
    for (ToolReport report : node_.image().tool_reports()) {
        report.frame = to_int(time);
        text += text_of(report);
        if (!report.failure.empty()) text += "  " + report.failure + "\n";
    }
    return {std::nullopt, text};
}

// Hosts need not tell of every new value, as of those of another frame.
std::string Editor::script() {
    load();
    return write_script(node_.panel());
}

void Editor::apply(const std::string& text, const std::string& file, OfxTime time) {
    const std::vector<ScriptGroup> groups = read_script(text, file);
    const ScriptGroup* const ours = find_group(groups, node_.image().class_name(), file);
    if (ours == nullptr) throw Failure(kOfxStatFailed, file + ": has no Veloxa { ... } group");
    edit("Load Settings", time, kFullSize, [&](const KnobValues&) {
        for (const Parameter& parameter : list().parameters()) {
            const bool held = parameter.is_button() || parameter.knob->flag(kKnobUnscripted);
            if (!held) parameter.knob->restore_default();
        }
        apply_script(node_.panel(), *ours, file);
        return Outcome{std::nullopt, "settings are loaded from " + file, true};
    });
}

}  // namespace veloxa::ofx
