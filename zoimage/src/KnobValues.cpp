#include "ZoImage/KnobValues.h"

#include <locale>
#include <sstream>

namespace Zo::Image {

std::string text_of(const Knob& knob) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    knob.to_script(text, false);
    return text.str();
}

KnobValues::KnobValues(std::span<Knob* const> knobs) {
    for (Knob* const knob : knobs) values_.push_back({knob, text_of(*knob)});
}

KnobValues::KnobValues(const KnobPanel& panel) {
    for (const auto& knob : panel.knobs()) {
        const bool own = &knob->target() == knob.get();
        if (own && knob->takes_value()) values_.push_back({knob.get(), text_of(*knob)});
    }
}

std::vector<Knob*> KnobValues::changed() const {
    std::vector<Knob*> knobs;
    for (const Value& value : values_) {
        if (text_of(*value.knob) != value.text) knobs.push_back(value.knob);
    }
    return knobs;
}

std::vector<KnobChange> KnobValues::changes() const {
    std::vector<KnobChange> changes;
    for (const auto& [knob, before] : values_) {
        std::string now = text_of(*knob);
        if (knob->kind() == Knob::Kind::kCustom || now == before) continue;
        changes.push_back({knob->name(), before, std::move(now)});
    }
    return changes;
}

void KnobValues::restore() const {
    for (const auto& [knob, text] : values_) {
        if (text_of(*knob) != text) knob->from_script(text);
    }
}

}  // namespace Zo::Image
