// What happens when a knob of the keyer changes.
#include <algorithm>

#include "panel/Panel.h"

using namespace Zo::Image;

namespace {

// Shows a colour knob's colour on a tool button.
void show_color(const Knob* color, Knob* tool) {
    if (color == nullptr || tool == nullptr) return;
    for (int i = 0; i < 3; ++i) tool->set_value(color->get_value(i), i);
    tool->set_value(1.0, 3);
}

}  // namespace

int PanelKnobs::knob_changed(Knob* knob) {
    if (knob == nullptr) return 0;
    knob = &knob->target();
    if (const int handled = handle(knob); handled != 0) return handled;
    if (knob == screen_color_) {
        show_color(screen_color_, tool(Tool::kScreen));
        return 1;
    }
    if (knob == shadows_tint_) {
        show_color(shadows_tint_, tool(Tool::kMatchShadow));
        return 1;
    }
    if (knob == screen_correct_reset_) {
        reset_screen_correct();
        return 1;
    }
    if (knob == spill_reset_) {
        reset_spill();
        return 1;
    }
    return tool_of(knob) ? 1 : 0;
}

std::optional<Tool> PanelKnobs::tool_of(const Knob* knob) const {
    const auto found = std::find(tools_.begin(), tools_.end(), knob);
    if (knob == nullptr || found == tools_.end()) return std::nullopt;
    return static_cast<Tool>(found - tools_.begin());
}

std::vector<Knob*> PanelKnobs::valued() const {
    std::vector<Knob*> knobs = settings_;
    std::copy_if(samples_.begin(), samples_.end(), std::back_inserter(knobs),
                 [](const Knob* list) { return list != nullptr; });
    return knobs;
}

KnobFields PanelKnobs::held() const {
    KnobFields fields;
    for (std::size_t i = 0; i < settings_.size(); ++i) {
        if (settings_[i]->flag(kKnobHeld)) fields.add(places_[i]);
    }
    return fields;
}

std::vector<Knob*> PanelKnobs::held_among(const KnobFields& fields) const {
    std::vector<Knob*> knobs;
    for (std::size_t i = 0; i < settings_.size(); ++i) {
        if (settings_[i]->flag(kKnobHeld) && fields.has(places_[i])) knobs.push_back(settings_[i]);
    }
    return knobs;
}

int PanelKnobs::handle(Knob* knob) {
    if (knob == nullptr) return 0;
    const Knob* const enable = &knob->target();
    const bool known = std::any_of(dependencies_.begin(), dependencies_.end(), [&](const Dependency& d) {
        return d.enable == enable || d.second_enable == enable;
    });
    if (!known) return 0;
    update_enables();
    return 1;
}

void PanelKnobs::update_enables() {
    const auto on = [](const Knob* enable) { return enable == nullptr || enable->get_value() != 0.0; };
    for (const Dependency& d : dependencies_) d.knob->enabled(on(d.enable) && on(d.second_enable));
}

void PanelKnobs::reset_screen_correct() {
    clear_samples(SampleAction::kAddOverlay, SampleAction::kRemoveOverlayCp);
    for (Knob* const knob : screen_correct_knobs_) knob->restore_default();
}

void PanelKnobs::reset_spill() {
    clear_samples(SampleAction::kRestoreSpill, SampleAction::kRemoveSpill);
    for (Knob* const knob : spill_knobs_) knob->restore_default();
}

void PanelKnobs::clear_samples(SampleAction first, SampleAction last) {
    for (auto i = static_cast<std::size_t>(first); i <= static_cast<std::size_t>(last); ++i) {
        if (samples_[i] != nullptr) samples_[i]->clear();
    }
}
