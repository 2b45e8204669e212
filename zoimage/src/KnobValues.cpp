#include "ZoImage/KnobValues.h"

namespace Zo::Image {

KnobValues::KnobValues(std::span<Knob* const> knobs) {
    for (Knob* const knob : knobs) values_.push_back({knob, knob->text()});
}

KnobValues::KnobValues(const KnobPanel& panel) {
    for (const auto& knob : panel.knobs()) {
        const bool own = &knob->target() == knob.get();
        if (own && knob->takes_value()) values_.push_back({knob.get(), knob->text()});
    }
}

std::vector<Knob*> KnobValues::changed() const {
    std::vector<Knob*> knobs;
    for (const Value& value : values_) {
        if (value.knob->text() != value.text) knobs.push_back(value.knob);
    }
    return knobs;
}

std::vector<KnobChange> KnobValues::changes() const {
    std::vector<KnobChange> changes;
    for (const auto& [knob, before] : values_) {
        std::string now = knob->text();
        if (knob->kind() == Knob::Kind::kCustom || now == before) continue;
        changes.push_back({knob->name(), before, std::move(now)});
    }
    return changes;
}

void KnobValues::restore() const {
    for (const auto& [knob, text] : values_) {
        if (knob->text() != text) knob->from_script(text);
    }
}

}  // namespace Zo::Image
