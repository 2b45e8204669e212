#include "instance/Editor.h"

#include <algorithm>

#include "host/Host.h"
#include "images/Identity.h"
#include "ZoImage/KnobValues.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

constexpr RenderScale kFullSize{1.0, 1.0};

// What of the reports is for the user: failures, notes, and samples that no knob could satisfy.
std::string remarks(const std::vector<ToolReport>& reports) {
    std::string text;
    const auto line = [&](const std::string& remark) { text += (text.empty() ? "" : "\n") + remark; };
    for (const ToolReport& report : reports) {
        if (!report.failure.empty()) line(report.failure);
        for (const std::string& note : report.notes) line(note);
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
      enabled_(node_.list().parameters().size(), -1) {}

bool Editor::is_tool(std::size_t n) const {
    const Knob& knob = *list().parameters()[n].knob;
    return knob.kind() == Knob::Kind::kToolButton || knob.flag(kKnobLooks);
}

void Editor::load() {
    set_knobs(kFullSize);
    show_enables();
}

void Editor::follow(std::size_t n) {
    const Parameter& parameter = list().parameters()[n];
    if (set_knob(parameter, parameters_.value(n, std::nullopt), kFullSize)) parameter.knob->changed();
    show_enables();
}

void Editor::set_knobs(const RenderScale& scale) {
    const Values values = parameters_.values(std::nullopt);
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
template <class Work>
void Editor::edit(std::size_t n, OfxTime time, const RenderScale& scale, const Work& work) try {
    const std::vector<Parameter>& all = list().parameters();
    set_knobs(scale);
    const KnobValues before(node_.panel());
    work();
    const std::vector<Knob*> changed = before.changed();
    std::vector<std::pair<std::size_t, Value>> found;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const bool other = std::find(changed.begin(), changed.end(), all[i].knob) != changed.end();
        if (other) found.emplace_back(i, knob_value(all[i], scale));
    }
    if (!found.empty()) {
        const ParameterSet::Edit step(parameters_, all[n].label);
        for (const auto& [i, value] : found) parameters_.set(i, value, time);
    }
    load();
} catch (...) {
    load();
    throw;
}

void Editor::press(std::size_t n, OfxTime time) {
    edit(n, time, kFullSize, [&] { node_.panel().press(*list().parameters()[n].knob); });
}

std::string Editor::use_tool(std::size_t n, OfxTime time, const PixelGrid& grid, const Pictures& pictures) {
    const OfxRectD area = parameters_.sampling_rectangle(time);
    Knob& tool = *list().parameters()[n].knob;
    poll_.begin(effect_);
    edit(n, time, grid.scale, [&] {
        const Wired wired(node_.image(), pictures, poll_);
        if (tool.kind() == Knob::Kind::kToolButton) {
            tool.set_value(grid.x_pixels(area.x1), 4);
            tool.set_value(grid.y_pixels(area.y1), 5);
            tool.set_value(grid.x_pixels(area.x2), 6);
            tool.set_value(grid.y_pixels(area.y2), 7);
            tool.activate();
        }
        tool.changed();
    });
    if (poll_.flag().raised()) throw Failure(kOfxStatFailed);  // the host does not want it any more
    return remarks(node_.image().tool_reports());
}

}  // namespace veloxa::ofx
