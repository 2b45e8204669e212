// What is left of a tool when some of its knobs are held.
#include "tools/ColorMatchAnalysis.h"
#include "tools/ToolRun.h"

using namespace Zo::Image;
using K = KnobStorage;

namespace {

struct ToolKnobs {
    void add(const std::vector<Dial>& dials) {
        for (const Dial& dial : dials) fields.add_row(dial.row);
    }

    KnobFields fields;
    bool K::*enable = nullptr;  // without which the fields say nothing
};

ToolKnobs knobs_of(Tool tool, const Setting& setting) {
    ToolKnobs knobs;
    switch (tool) {
        case Tool::kScreen:
        case Tool::kFindScreen:
            knobs.fields.add(&K::screen_color);
            break;
        case Tool::kMatchShadow:
            knobs.fields.add(&K::shadows_tint);
            break;
        case Tool::kAddOverlay:
        case Tool::kRemoveOverlay:
            knobs.add(overlay_dials(setting));
            break;
        case Tool::kAddMatte:
            knobs.add(add_matte_dials(setting));
            break;
        case Tool::kRemoveNoise:
            knobs.enable = &K::cleanup;
            knobs.add(matte_sample_dials(setting, true));
            break;
        case Tool::kHoldShadow:
        case Tool::kRestoreDetail:
            knobs.add(matte_sample_dials(setting, false));
            break;
        case Tool::kRestoreSpill:
        case Tool::kRemoveSpill:
            knobs.enable = &K::spill_suppression;
            knobs.add(spill_dials(setting, true));
            break;
        case Tool::kMatchColor:
            knobs.enable = &K::color_conformance;
            for (int component = 0; component < 3; ++component) {
                knobs.add(color_match_dials(setting, component));
            }
            break;
        case Tool::kSetUp:
            break;
    }
    return knobs;
}

}  // namespace

bool ToolRun::may_turn(Tool tool) {
    const Setting present = setting();
    ToolKnobs knobs = knobs_of(tool, present);
    const bool off = knobs.enable != nullptr && !(present.knobs.*knobs.enable);
    if (off) knobs.fields.add(knobs.enable);
    for (const Knob* const knob : node_.panel.held_among(knobs.fields)) tell_held(*knob);
    if (off && present.held.has(knobs.enable)) {
        note("what the tool works by is off, and held so");
        return false;
    }
    if (!knobs.fields.all_in(present.held)) return true;
    note("every knob that the tool could turn is held");
    return false;
}

void ToolRun::tell_held(const Knob& knob) {
    report_.held.push_back(knob.name());
}

bool ToolRun::is_held(SampleAction action) const {
    return node_.panel.samples(action)->flag(kKnobHeld);
}
