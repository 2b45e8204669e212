#include "Editor.h"

#include <sstream>

#include "Identity.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

constexpr RenderScale kFullSize{1.0, 1.0};

// The report's lines have fields separated by tabs; see diagnostic("tool") of the node. Its notes, and its
// samples that no knob could satisfy, are for the user.
std::string remarks(const std::string& report) {
    std::string text;
    std::istringstream lines(report);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string kind;
        std::getline(fields, kind, '\t');
        if (kind == "note") {
            std::string note;
            std::getline(fields, note);
            text += (text.empty() ? "" : "\n") + note;
        } else if (kind == "samples") {
            int satisfied = 0;
            int unsatisfied = 0;
            int unusable = 0;
            fields >> satisfied >> unsatisfied >> unusable;
            if (unsatisfied > 0) {
                text += (text.empty() ? "" : "\n") + std::to_string(unsatisfied) + " of " +
                        std::to_string(satisfied + unsatisfied) + " samples could not be satisfied";
            }
            if (unusable > 0) {
                text += (text.empty() ? "" : "\n") + std::to_string(unusable) +
                        " samples hold values that are not finite";
            }
        }
    }
    return text;
}

}  // namespace

// Connects images to the node's inputs for a scope.
class Editor::Wired {
  public:
    Wired(Iop& node, const Pictures& pictures) : node_(node) {
        const Box foreground = pictures[kForeground] ? pictures[kForeground]->frame() : Box{};
        for (std::size_t n = 0; n < kInputs; ++n) {
            if (pictures[n]) inputs_[n].serve(*pictures[n], foreground, fresh_identity());
            const bool used = pictures[n].has_value() || n == kForeground || n == kBackground;
            node_.set_input(static_cast<int>(n), used ? &inputs_[n] : nullptr);
        }
    }
    ~Wired() {
        for (std::size_t n = 0; n < kInputs; ++n) node_.set_input(static_cast<int>(n), nullptr);
    }
    Wired(const Wired&) = delete;
    Wired& operator=(const Wired&) = delete;

  private:
    Iop& node_;
    std::array<ClipImage, kInputs> inputs_{{ClipImage(kInputClips[0].role), ClipImage(kInputClips[1].role),
                                            ClipImage(kInputClips[2].role), ClipImage(kInputClips[3].role),
                                            ClipImage(kInputClips[4].role)}};
};

Editor::Editor(OfxImageEffectHandle effect)
    : parameters_(effect, node_.list()), enabled_(node_.list().parameters().size(), -1) {}

bool Editor::is_tool(std::size_t n) const {
    return list().parameters()[n].knob->kind() == Knob::Kind::kToolButton;
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
    const auto snapshot = [&] {
        Values values;
        for (const Parameter& parameter : all) values.push_back(knob_value(parameter, scale));
        return values;
    };
    set_knobs(scale);
    const Values before = snapshot();
    work();
    const Values after = snapshot();
    {
        std::optional<ParameterSet::Edit> step;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (all[i].is_button() || after[i] == before[i]) continue;
            if (!step) step.emplace(parameters_, all[n].label);
            parameters_.set(i, after[i], time);
        }
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
    edit(n, time, grid.scale, [&] {
        const Wired wired(node_.image(), pictures);
        tool.set_value(grid.x_pixels(area.x1), 4);
        tool.set_value(grid.y_pixels(area.y1), 5);
        tool.set_value(grid.x_pixels(area.x2), 6);
        tool.set_value(grid.y_pixels(area.y2), 7);
        tool.activate();
        tool.changed();
    });
    return remarks(node_.image().diagnostic("tool"));
}

}  // namespace veloxa::ofx
