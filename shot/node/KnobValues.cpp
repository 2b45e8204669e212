#include "shot/node/KnobValues.h"

namespace veloxa {

using namespace Zo::Image;

KnobValues::KnobValues(const KnobPanel& panel) {
    for (const auto& knob : panel.knobs()) {
        const bool own = &knob->target() == knob.get();
        if (own && knob->takes_value()) values_.push_back({knob.get(), knob->text()});
    }
}

std::vector<KnobChange> KnobValues::since(const KnobValues& before) const {
    std::vector<KnobChange> changes;
    for (std::size_t n = 0; n < values_.size(); ++n) {
        const auto& [knob, text] = values_[n];
        if (knob->kind() == Knob::Kind::kCustom || text == before.values_[n].text) continue;
        changes.push_back({knob->name(), before.values_[n].text, text});
    }
    return changes;
}

void KnobValues::restore() const {
    for (const auto& [knob, text] : values_) {
        if (knob->text() == text) continue;
        knob->from_script(text);
        knob->changed();
    }
}

}  // namespace veloxa
