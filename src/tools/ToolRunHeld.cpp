// What is left of a tool when some of its knobs are held, and why one has turned none.
#include <algorithm>

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

bool looks_behind(Tool tool) {
    return tool == Tool::kMatchColor || tool == Tool::kMatchShadow;
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

ToolReport ToolRun::run_and_explain(Tool tool, const StrokeAreas& areas) {
    const bool chosen = std::ranges::any_of(node_.knobs.screen_color, [](float v) { return v != 0.0f; });
    ToolReport report = run(tool, areas);
    const bool told = report.unusable > 0 || (report.samples() == 0 && !report.notes.empty());
    if (!report.changes.empty() || !report.failure.empty() || told) return report;
    if (adds_samples_alone(tool) || tool == Tool::kAnalyseShot) return report;
    const auto say = [&](std::string_view text) { report.notes.emplace_back(text); };
    if (!chosen && tool != Tool::kScreen && !looks_behind(tool)) {
        say("no screen colour is chosen, which the tool needs: find it or pick it first");
    } else if (looks_behind(tool) &&
               std::ranges::all_of(mean(node_.image.input(2)), [](float v) { return v == 0.0f; })) {
        say("the background, whose colour the tool needs, is black there, or none is connected");
    } else if (report.unsatisfied > 0) {
        std::string names;
        const Setting present = setting();
        for (const Dial& dial : knobs_of(tool, present).dials) {
            if (present.held.has_row(dial.row)) continue;
            const std::string name(knob_table()[dial.row].name);
            if (names.find(name) == names.npos) names += (names.empty() ? "" : ", ") + name;
        }
        say("it would have had to turn further than the other samples and the reach allow: " + names);
    } else if (report.notes.empty()) {
        say("nothing had to be turned: what the stroke asks is so already");
    }
    return report;
}
