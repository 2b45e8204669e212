// The two overlay tools.
#include <algorithm>
#include <cmath>

#include "ZoImage/Render.h"
#include "tools/ToolRun.h"

using namespace Zo::Image;

namespace {

constexpr int kMostMargins = 4;
constexpr double kWidestMargin = 16.0;
constexpr std::size_t kMostPlaces = 256;

}  // namespace

// The lists' means before the pixels, the other tool's before this one's; but the newest wins, so what a held
// list has right comes last.
std::vector<OverlaySample> ToolRun::overlay_samples(bool add) {
    std::vector<OverlaySample> samples, kept;
    unusable_ = 0;
    const auto append = [&](const OverlaySample& sample) {
        if (counts(usable(sample.fg) && usable(sample.plate))) samples.push_back(sample);
    };
    for (const bool mode : {!add, add}) {
        const SampleAction action = mode ? SampleAction::kAddOverlay : SampleAction::kRemoveOverlay;
        const auto* const fg = node_.panel.samples(action);
        const auto* const cp =
            node_.panel.samples(mode ? SampleAction::kAddOverlayCp : SampleAction::kRemoveOverlayCp);
        for (std::size_t i = 0; i < fg->samples().size(); ++i) {
            const std::size_t back = fg->samples().size() - i;
            const std::size_t plates = cp->samples().size();
            const Sample plated = back <= plates ? cp->samples()[plates - back] : screen_sample();
            const OverlaySample sample{as_saved(fg->samples()[i]), as_saved(plated), mode};
            if (is_held(action) && overlay_agrees(setting(), {&sample, 1}).front()) {
                kept.push_back(sample);
            } else {
                append(sample);
            }
        }
    }
    for (const OverlaySample& pixel : node_.session.overlay.samples()) append(pixel);
    for (const OverlaySample& sample : kept) append(sample);
    return samples;
}

void ToolRun::overlay(bool add) {
    gather_overlay(add);
    Strokes<OverlaySample>& strokes = node_.session.overlay;
    const auto analyse = [&] { return analyse_overlay(setting(), overlay_samples(add)); };
    const auto agrees = [&](const KnobStorage& knobs, const std::vector<OverlaySample>& asked) {
        return overlay_agrees(setting(knobs), asked);
    };
    Tuning tuning = refine(strokes, analyse, agrees);
    // The decision is a pixel's own, but shrinking and orphans look at places: the stroke's margin may need
    // what lies beside it, unless that costs a sample.
    auto lost = add ? visible(tuning.knobs) : std::vector<std::array<int, 2>>{};
    for (int round = 0; !lost.empty() && round < kMostMargins; ++round) {
        const Strokes<OverlaySample> before = strokes;
        strokes.extend(surroundings(tuning.knobs, lost));
        Tuning wider = refine(strokes, analyse, agrees);
        auto still = visible(wider.knobs);
        const auto missed = [](const Tuning& t) {
            return std::ranges::count_if(t.misses, [](double m) { return m != 0.0; });
        };
        if (still.size() >= lost.size() || missed(wider) > missed(tuning)) {
            strokes = before;
            break;
        }
        tuning = std::move(wider);
        lost = std::move(still);
    }
    note_missed(strokes, tuning, agrees);
    if (!lost.empty()) note("not all of the stroke is transparent: what lies beside it is no backing");
    adopt(tuning, tuning.misses.size());
}

std::vector<std::array<int, 2>> ToolRun::visible(const KnobStorage& knobs) {
    std::vector<std::array<int, 2>> places;
    const StrokeGrid grid(areas_);
    with(knobs, [&] {
        // A render makes what the stages look up and down for once.
        Renderer renderer(1, node_.abort());
        for (const Box& part : areas_.parts()) {
            if (grid.columns(part) == 0 || grid.rows(part) == 0) continue;
            render_or_give_up(renderer, node_.image, part, kMaskRgba, [&](int y, const Row& row) {
                if (grid.row_from(y) != y) return;
                for (int x = grid.column_from(part.x); x < part.r; x += grid.step_x()) {
                    if (row[kAlpha][x - part.x] != 0.0f) places.push_back({x, y});
                }
            });
        }
    });
    return places;
}

std::vector<OverlaySample> ToolRun::surroundings(const KnobStorage& knobs,
                                                 const std::vector<std::array<int, 2>>& places) {
    const auto reach = [&](std::size_t axis) {
        const double radius = std::ceil(std::clamp(node_.knobs.screen_shrink[axis], 0.0, kWidestMargin));
        return to_int(radius) + (node_.knobs.screen_orphans > 0 ? 1 : 0);
    };
    const Box& frame = node_.image.input(0).info().box;
    std::vector<OverlaySample> beside;
    const std::size_t count = std::min(places.size(), kMostPlaces);
    for (std::size_t i = 0; i < count; ++i) {
        const auto [x, y] = places[i * places.size() / count];
        const Box near{std::max(x - reach(0), frame.x), std::max(y - reach(1), frame.y),
                       std::min(x + reach(0) + 1, frame.r), std::min(y + reach(1) + 1, frame.t)};
        const auto pixels =
            read_pixels(node_.image.input(0), plate(), nullptr, StrokeAreas({near}), node_.abort());
        const std::vector<OverlaySample> samples = overlay_pixels(pixels, true);
        beside.insert(beside.end(), samples.begin(), samples.end());
    }
    return Strokes<OverlaySample>::left(
        beside, [&](const auto& samples) { return overlay_agrees(setting(knobs), samples); });
}

ToolRun::Sample ToolRun::screen_sample() const {
    const KnobStorage::Color& screen = node_.knobs.screen_color;
    return {screen[0], screen[1], screen[2], 0.0f};
}

std::vector<OverlaySample> ToolRun::overlay_pixels(const std::vector<StrokePixel>& pixels,
                                                   bool screen) const {
    std::vector<OverlaySample> samples;
    samples.reserve(pixels.size());
    for (const StrokePixel& p : pixels) {
        samples.push_back({p.first, plate() != nullptr ? p.second : screen_sample(), screen});
    }
    return samples;
}

void ToolRun::gather_overlay(bool add) {
    const auto list = [this](SampleAction action) { return node_.panel.samples(action); };
    auto* const fg = list(add ? SampleAction::kAddOverlay : SampleAction::kRemoveOverlay);
    auto* const cp = list(add ? SampleAction::kAddOverlayCp : SampleAction::kRemoveOverlayCp);
    node_.session.overlay.begin(overlay_pixels(pixels(node_.image.input(0), plate()), add));
    // A plate's sample belongs to one of the foreground.
    for (const Knob* const samples : {fg, cp}) {
        if (samples->flag(kKnobHeld)) return tell_held(*samples);
    }
    fg->add_areas(node_.image.input(0), areas_.parts());
    node_.image.validate(true);
    if (plate() == nullptr) {
        // One, as of a plate: the lists are paired from their ends.
        cp->add_point(screen_sample(), 0, 0, 1, 1);
    } else {
        cp->add_areas(*plate(), areas_.parts());
    }
    node_.image.validate(true);
}
