#include "tools/ToolRun.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "ZoImage/Convert.h"
#include "ZoImage/KnobValues.h"
#include "panel/InputFlags.h"
#include "stages/VlxNormalize.h"
#include "tools/ColorMatchAnalysis.h"
#include "tools/Elsewhere.h"
#include "tools/ScreenEstimate.h"
#include "tools/SpillAnalysis.h"

using namespace Zo::Image;

namespace {

// A stroke beyond this is a slip of the hand, and its pixels would not fit.
constexpr std::int64_t kLargestSide = 1 << 16;
constexpr std::int64_t kLargestArea = 1 << 26;

constexpr std::size_t kBackingPixels = VeloxaSample::kCapacity;

std::vector<PlatedSample> spread_over(const std::vector<PlatedSample>& pixels) {
    std::vector<VeloxaSample::Sample> colors;
    colors.reserve(pixels.size());
    for (const PlatedSample& p : pixels) colors.push_back(p.fg);
    std::vector<PlatedSample> chosen;
    for (const std::size_t i : extremes(colors)) chosen.push_back(pixels[i]);
    const std::size_t rest = std::min(kBackingPixels - chosen.size(), pixels.size());
    for (std::size_t i = 0; i < rest; ++i) chosen.push_back(pixels[i * pixels.size() / rest]);
    return chosen;
}

bool turns_difference(Tool tool) {
    return tool == Tool::kAddOverlay || tool == Tool::kRemoveOverlay || tool == Tool::kAddMatte ||
           tool == Tool::kRestoreSpill || tool == Tool::kRemoveSpill;
}

bool turns_matte(Tool tool) {
    return tool == Tool::kAddOverlay || tool == Tool::kRemoveOverlay || tool == Tool::kAddMatte ||
           tool == Tool::kRemoveNoise || tool == Tool::kHoldShadow || tool == Tool::kRestoreDetail;
}

}  // namespace

ToolReport ToolRun::run(Tool tool, const StrokeAreas& areas) {
    report_.tool = node_.panel.tool(tool)->name();
    forget_taken_back();
    if (tool >= Tool::kFindScreen || take_areas(areas)) {
        node_.image.validate(true);
        const KnobStorage before = node_.knobs;
        if (may_turn(tool)) use(tool);
        if (turns_matte(tool)) note_elsewhere(before);
    }
    for (std::size_t i = 0; i < node_.session.saved_counts.size(); ++i) {
        node_.session.saved_counts[i] = node_.panel.samples(static_cast<SampleAction>(i))->count();
    }
    node_.session.knobs = node_.knobs;
    return std::move(report_);
}

void ToolRun::use(Tool tool) {
    const bool subject = node_.knobs.shows_subject();
    if (node_.knobs.unmixes() && turns_difference(tool))
        note("it counts once the method is colour difference");
    switch (tool) {
        case Tool::kScreen:
            return pick_color(node_.image.input(0), &KnobStorage::screen_color, false);
        case Tool::kMatchShadow:
            return pick_color(node_.image.input(2), &KnobStorage::shadows_tint, true);
        case Tool::kAddOverlay:
            return overlay(!subject);
        case Tool::kRemoveOverlay:
            return overlay(subject);
        case Tool::kAddMatte:
            return add_matte();
        case Tool::kRemoveNoise:
        case Tool::kHoldShadow:
        case Tool::kRestoreDetail:
            return matte_samples(tool == Tool::kRemoveNoise);
        case Tool::kRestoreSpill:
        case Tool::kRemoveSpill:
            return spill(tool == Tool::kRestoreSpill);
        case Tool::kMatchColor:
            return match_color();
        case Tool::kFindScreen:
            return find_screen();
        case Tool::kUnmixBacking:
            return teach(SampleAction::kUnmixBacking);
        case Tool::kUnmixSolid:
            return teach(SampleAction::kUnmixSolid);
        case Tool::kUnmixSeeThrough:
            return teach(SampleAction::kUnmixSeeThrough);
        case Tool::kUnmixOwn:
            return teach(SampleAction::kUnmixOwn);
        case Tool::kAnalyseShot:
            return analyse_shot();
        case Tool::kSetUp:
            break;
    }
}

void ToolRun::forget_taken_back() {
    const bool added = taken_back(SampleAction::kAddOverlay);
    const bool removed = taken_back(SampleAction::kRemoveOverlay);
    node_.session.overlay.forget([&](const OverlaySample& s) { return s.screen ? added : removed; });
    const bool restored = taken_back(SampleAction::kRestoreSpill);
    const bool spilled = taken_back(SampleAction::kRemoveSpill);
    node_.session.spill.forget([&](const SpillSample& s) { return s.restore ? restored : spilled; });
}

bool ToolRun::taken_back(SampleAction action) const {
    // A held list takes no sample that could be missed.
    if (is_held(action)) return node_.session.knobs != node_.knobs;
    const int count = node_.panel.samples(action)->count();
    return count == 0 || count < node_.session.saved_counts[static_cast<std::size_t>(action)];
}

bool ToolRun::take_areas(const StrokeAreas& areas) {
    areas_ = areas;
    const Box& box = report_.box = areas_.around();
    const std::int64_t width = std::int64_t{box.r} - box.x;
    const std::int64_t height = std::int64_t{box.t} - box.y;
    if (width <= 0 || height <= 0) {
        note("the stroke is empty");
        return false;
    }
    if (width > kLargestSide || height > kLargestSide || areas_.pixels() > kLargestArea) {
        note("the stroke is too large");
        return false;
    }
    return true;
}

ToolRun::Sample ToolRun::mean(Iop& source) const {
    VeloxaSample stroke(&node_.image);
    stroke.add_areas(source, areas_.parts());
    return stroke.count() == 0 ? Sample{} : stroke.samples().front();
}

std::vector<StrokePixel> ToolRun::pixels(Iop& first, Iop* second) {
    std::vector<StrokePixel> stroke = read_pixels(first, second, nullptr, areas_, node_.abort());
    if (stroke.empty()) ++unusable_;
    return stroke;
}

Setting ToolRun::setting(const KnobStorage& knobs) const {
    return {knobs, node_.controls, node_.input_flags, node_.panel.held()};
}

Iop* ToolRun::plate() const {
    return node_.flag(kCpUsable) ? &node_.image.input(1) : nullptr;
}

void ToolRun::note_elsewhere(const KnobStorage& before) {
    if (node_.knobs.unmixes() || report_.changes.empty()) return;
    const std::vector<PlatedSample> pixels = pixels_elsewhere(node_, areas_);
    for (const std::string& line : losses(setting(before), setting(), pixels).notes()) note(line);
}

void ToolRun::note(std::string_view text) {
    report_.notes.emplace_back(text);
}

void ToolRun::find_screen() {
    const Knob& button = *node_.panel.tool(Tool::kFindScreen);
    const std::string& wanted = button.items()[static_cast<std::size_t>(node_.knobs.screen_choice)];
    Renderer renderer = node_.renderer();
    const ScreenEstimate found = estimate_screen(node_.image.input(0), screen_named(wanted), renderer);
    report_.box = found.frame;
    const char* const name = screen_name(found.primary);
    char text[256];
    if (!found.found()) {
        std::snprintf(text, sizeof text,
                      "no backing stands out: the likeliest, %s, has confidence %.2f, below %.2f", name,
                      found.confidence(), found.needed);
        report_.failure = text;
        return;
    }
    KnobStorage values = node_.knobs;
    std::transform(found.color.begin(), found.color.end(), values.screen_color.begin(),
                   [](double v) { return static_cast<float>(v); });
    set_knobs(values);
    std::snprintf(text, sizeof text,
                  "%s screen, screen_color %.4g,%.4g,%.4g: colours like it fill %.0f%% of the frame, borders "
                  "counting most, another primary's %.0f%% (confidence %.2f)",
                  name, found.color[0], found.color[1], found.color[2], 100.0 * found.share,
                  100.0 * found.rival, found.confidence());
    note(text);
}

// A bright background would make the shadow's tint no shadow.
void ToolRun::pick_color(Iop& source, KnobStorage::Color KnobStorage::*field, bool darken) {
    VeloxaSample stroke(&node_.image);
    stroke.add_areas(source, areas_.parts());
    Sample color = stroke.average();
    if (!usable(color)) {
        note("the stroke's colour is not finite");
        report_.unusable = 1;
        return;
    }
    while (darken && color[0] + color[1] + color[2] > 0.5f) {
        for (std::size_t i = 0; i < 3; ++i) color[i] *= 0.85f;
    }
    KnobStorage values = node_.knobs;
    values.*field = {color[0], color[1], color[2]};
    set_knobs(values);
    report_.satisfied = 1;
}

void ToolRun::add_matte() {
    ToolSession& session = node_.session;
    std::vector<PlatedSample> asked;
    for (const StrokePixel& p : pixels(node_.image.input(0), plate())) asked.push_back({p.first, p.second});
    session.opaque.begin(std::move(asked));
    gather_backing();
    const auto analyse = [&] {
        return analyse_add_matte(setting(), session.opaque.samples(), session.backing,
                                 session.backing_mattes);
    };
    const auto agrees = [&](const KnobStorage& knobs, const std::vector<PlatedSample>& pixels) {
        const std::vector<float> mattes = sample_mattes(setting(knobs), pixels);
        std::vector<bool> solid(mattes.size());
        std::transform(mattes.begin(), mattes.end(), solid.begin(), [](float m) { return m <= 0.0f; });
        return solid;
    };
    const Tuning tuning = refine(session.opaque, analyse, agrees);
    note_missed(session.opaque, tuning, agrees);
    adopt(tuning, session.opaque.samples().size());
}

// The bounds hold from stroke to stroke, or many small steps would be a large one. They are taken anew for
// another screen colour, and where the density was turned by hand.
void ToolRun::gather_backing() {
    ToolSession& session = node_.session;
    const auto kept = [&] {
        const std::vector<float> mattes = sample_mattes(setting(), session.backing);
        return std::equal(mattes.begin(), mattes.end(), session.backing_mattes.begin(),
                          [](float a, float b) { return std::abs(a - b) <= 1.0f; });
    };
    if (session.backing_color == node_.knobs.screen_color && !session.backing.empty() && kept()) return;
    Iop& fg = node_.image.input(0);
    std::vector<OverlaySample> region;
    const StrokeAreas all({fg.info().box});
    for (const StrokePixel& p : read_pixels(fg, plate(), &node_.screen_area(), all, node_.abort())) {
        region.push_back({p.first, p.second, true});
    }
    // A pixel that is of the region only by its neighbours would be judged without them.
    const std::vector<bool> clear = overlay_agrees(setting(), region);
    std::vector<PlatedSample> pixels;
    for (std::size_t i = 0; i < region.size(); ++i) {
        if (clear[i] || !node_.knobs.screen_correct) pixels.push_back({region[i].fg, region[i].plate});
    }
    session.backing = spread_over(pixels);
    session.backing_mattes = sample_mattes(setting(), session.backing);
    session.backing_color = node_.knobs.screen_color;
}

void ToolRun::matte_samples(bool noise) {
    Iop& matte = node_.cleanup.input(0);
    std::vector<MatteSample>& list = node_.session.mattes;
    std::vector<Sample> stroke;
    for (const StrokePixel& p : pixels(matte, nullptr)) stroke.push_back(p.first);
    for (const std::size_t i : extremes(stroke)) remember(list, {stroke[i][3], noise});
    adopt(analyse_matte_samples(setting(), noise, list), list.size());
}

// The samples are taken with the backing out in full, whatever the veiling says, or they would mean another
// foreground after each change of it.
void ToolRun::spill(bool restore) {
    auto* const list =
        node_.panel.samples(restore ? SampleAction::kRestoreSpill : SampleAction::kRemoveSpill);
    Strokes<SpillSample>& strokes = node_.session.spill;
    KnobStorage bare = node_.knobs;
    bare.spill_backgroundveiling = KnobStorage{}.spill_backgroundveiling;
    with(bare, [&] {
        std::vector<SpillSample> asked;
        for (const StrokePixel& p : pixels(node_.output_matte(), nullptr))
            asked.push_back({p.first, restore});
        strokes.begin(std::move(asked));
        if (list->flag(kKnobHeld)) return tell_held(*list);
        list->add_areas(node_.output_matte(), areas_.parts());
    });

    const auto samples = [&] {
        std::vector<SpillSample> all;
        unusable_ = 0;
        for (const bool mode : {!restore, restore}) {
            const auto action = mode ? SampleAction::kRestoreSpill : SampleAction::kRemoveSpill;
            for (const Sample& sample : node_.panel.samples(action)->samples()) {
                if (counts(usable(sample))) all.push_back({as_saved(sample), mode});
            }
        }
        all.insert(all.end(), strokes.samples().begin(), strokes.samples().end());
        return all;
    };
    const auto agrees = [&](const KnobStorage& knobs, const std::vector<SpillSample>& pixels) {
        return spill_agrees(setting(), knobs, pixels);
    };
    const Tuning tuning = refine(
        strokes, [&] { return analyse_spill(setting(), samples()); }, agrees);
    note_missed(strokes, tuning, agrees);
    adopt(tuning, tuning.misses.size());
}

void ToolRun::match_color() {
    ToolSession& session = node_.session;
    const Sample keyed = mean(node_.color_correction.input(0));
    const Sample matte = mean(node_.output_matte());
    VlxNormalize normal(node_.image.context());
    normal.set_input(0, &node_.image.input(2));
    normal.setup();
    const Sample behind = mean(normal);
    if (!usable(keyed) || !usable(matte) || !usable(behind)) {
        ++unusable_;
    } else if (matte[3] < 127.5f) {
        remember(session.keyed, keyed);
        remember(session.behind, behind);
    } else {
        remember(session.background, behind);
    }
    const bool compared = !session.background.empty();
    if (!compared) note("no stroke on the background yet: the background behind the subject counts");
    const ColorMatch match =
        match_colors(setting(), session.keyed, compared ? session.background : session.behind);
    node_.controls.set(controls::kFgSample, match.fg[0], match.fg[1], match.fg[2]);
    node_.controls.set(controls::kBgSample, match.bg[0], match.bg[1], match.bg[2]);
    adopt(match.tuning, match.tuning.misses.size());
}

// A stroke is one sample, its mean: it points at one thing.
void ToolRun::teach(SampleAction action) {
    VeloxaSample_Knob& list = *node_.panel.samples(action);
    if (list.flag(kKnobHeld)) {
        tell_held(list);
        note("the list that the tool adds to is held");
        return;
    }
    const bool thin = action == SampleAction::kUnmixSeeThrough;
    Sample sample = mean(node_.image.input(0));
    sample[3] = thin ? node_.knobs.unmix_opacity : 1.0f;
    if (!usable(sample)) {
        note("the stroke's colour is not finite");
        report_.unusable = 1;
        return;
    }
    list.add_point(sample, 0, 0, 1, 1);
    report_.satisfied = list.count();
    char text[160];
    const int end = std::snprintf(text, sizeof text, "added %.4g,%.4g,%.4g", sample[0], sample[1], sample[2]);
    const auto left = sizeof text - static_cast<std::size_t>(end);
    if (thin) std::snprintf(text + end, left, ", opaque by %.4g", sample[3]);
    note(text);
    if (!node_.knobs.unmixes()) note("it counts once the method is unmix");
}

// The first `counted` misses are those of the user's samples.
void ToolRun::adopt(const Tuning& tuning, std::size_t counted) {
    set_knobs(tuning.knobs);
    const auto begin = tuning.misses.begin();
    const auto satisfied = std::count(begin, begin + static_cast<std::ptrdiff_t>(counted), 0.0);
    report_.satisfied = static_cast<int>(satisfied);
    report_.unsatisfied = static_cast<int>(counted) - report_.satisfied;
    report_.unusable = unusable_;
}

// By way of the knobs, which read and write the node's fields: what differs is found there.
void ToolRun::set_knobs(const KnobStorage& values) {
    const KnobStorage present = node_.knobs;
    const KnobValues before(node_.panel.settings());
    node_.knobs = values;
    report_.changes = before.changes();
    const std::vector<Knob*> changed = before.changed();
    node_.knobs = present;
    for (Knob* const knob : changed) knob->new_undo(knob->name().c_str());
    node_.knobs = values;
    for (Knob* const knob : changed) knob->changed();
}
