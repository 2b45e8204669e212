// What is left of a tool when some of its knobs are held.
#include "tools/ColorMatchAnalysis.h"
#include "tools/ToolRun.h"

using namespace Zo::Image;
using K = KnobStorage;

namespace {

struct ToolKnobs {
    std::vector<Dial> dials;
    KnobFields fields{};        // beside those of the dials
    bool K::*enable = nullptr;  // without which they say nothing
};

KnobFields only(KnobField field) {
    KnobFields fields;
    fields.add(field);
    return fields;
}

ToolKnobs knobs_of(Tool tool, const Setting& setting) {
    switch (tool) {
        case Tool::kScreen:
        case Tool::kFindScreen:
            return {{}, only(&K::screen_color)};
        case Tool::kMatchShadow:
            return {{}, only(&K::shadows_tint)};
        case Tool::kAddOverlay:
        case Tool::kRemoveOverlay:
            return {overlay_dials(setting)};
        case Tool::kAddMatte:
            return {add_matte_dials()};
        case Tool::kRemoveNoise:
            return {matte_sample_dials(setting, true), {}, &K::cleanup};
        case Tool::kHoldShadow:
        case Tool::kRestoreDetail:
            return {matte_sample_dials(setting, false)};
        case Tool::kRestoreSpill:
        case Tool::kRemoveSpill:
            return {spill_dials(setting, true), {}, &K::spill_suppression};
        case Tool::kMatchColor:
            return {color_match_dials(0), {}, &K::color_conformance};  // holding knows no components
        case Tool::kUnmixBacking:
        case Tool::kUnmixSolid:
        case Tool::kUnmixSeeThrough:
        case Tool::kUnmixOwn:
        case Tool::kSetUp:
        case Tool::kAnalyseShot:
            break;
    }
    return {};
}

// A list that is held is found by the tool itself.
bool adds_samples_alone(Tool tool) {
    return tool >= Tool::kUnmixBacking && tool <= Tool::kUnmixOwn;
}

}  // namespace

bool ToolRun::may_turn(Tool tool) {
    const Setting present = setting();
    if (adds_samples_alone(tool) || tool == Tool::kAnalyseShot) return true;
    ToolKnobs knobs = knobs_of(tool, present);
    for (const Dial& dial : knobs.dials) knobs.fields.add_row(dial.row);
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
