#include "tools/MethodChoice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "tools/ScreenEstimate.h"
#include "tools/StrokePixels.h"
#include "unmix/VlxUnmixBacking.h"
#include "unmix/VlxUnmixSolids.h"

using namespace Zo::Image;

namespace {

// Of the frame. Backing that shows but in gaps of the subject is too little to fit light to.
constexpr double kLeastSure = 0.03;

double share_of(const unmix::Bytes& mask) {
    if (mask.empty()) return 0.0;
    const auto count = std::count(mask.row(0), mask.row(0) + mask.size(), std::uint8_t{1});
    return static_cast<double>(count) / static_cast<double>(mask.size());
}

// How bright the backing's own channel is where it is sure.
double brightness(const unmix::BackingModel& model) {
    const unmix::Floats& level = model.coarse[static_cast<std::size_t>(model.screen)];
    double sum = 0.0;
    double count = 0.0;
    for (std::size_t i = 0; i < model.sure.size(); ++i) {
        if (model.sure[i] == 0) continue;
        sum += static_cast<double>(level[i]);
        ++count;
    }
    return sum > 0.0 ? sum / count : 1.0;
}

// Knobs of the colour difference alone, but for those of Output.
bool serves_difference(const Knob& knob) {
    constexpr std::array<std::string_view, 4> kTabs{"Density", "Screen Correct", "Spill", "Film"};
    constexpr std::array<std::string_view, 5> kSwitches{"film", "screen_correct", "spill_suppression",
                                                        "matte_scale", "merge"};
    constexpr std::array<std::string_view, 6> kLists{"us_add_overlay",    "us_add_overlay_cp",
                                                     "us_remove_ovelray", "us_remove_ovelray_cp",
                                                     "us_restore_spill",  "us_remove_spill"};
    if (knob.kind() == Knob::Kind::kLink) return false;  // its target says it
    const auto among = [](const auto& names, std::string_view name) {
        return std::ranges::find(names, name) != names.end();
    };
    return among(kTabs, knob.tab()) || among(kSwitches, knob.name()) || among(kLists, knob.name());
}

// Whether unmixing does what the knob says.
bool agrees_with_unmix(const Knob& knob) {
    constexpr std::array<std::pair<std::string_view, double>, 5> kAgreed{{{"film", 0.0},
                                                                          {"screen_correct", 1.0},
                                                                          {"spill_suppression", 1.0},
                                                                          {"matte_scale", 1.0},
                                                                          {"merge", 1.0}}};
    return std::ranges::any_of(
        kAgreed, [&](const auto& a) { return a.first == knob.name() && a.second == knob.get_value(); });
}

}  // namespace

PlateLook look_at_plate(const ToolNode& node, Renderer& renderer) {
    node.image.validate(true);
    node.unmix_solids.validate(true);
    Box row = node.unmix_solids.info().box;
    row.t = std::min(row.t, row.y + 1);
    // Whoever makes one row makes the frame.
    render_or_give_up(renderer, node.unmix_solids, row, kMaskAlpha, [](int, const Row&) {});
    const unmix::BackingModel& model = node.unmix_backing.model();
    const unmix::Segmentation& parts = node.unmix_solids.segmentation();
    PlateLook look;
    const double sure = share_of(model.sure);
    look.keyable = model.found && sure >= kLeastSure;
    const auto screen = static_cast<std::size_t>(model.screen);
    constexpr std::array<std::size_t, 3> kVariance{0, 3, 5};
    const double noise = std::sqrt(static_cast<double>(model.noise[kVariance[screen]])) / brightness(model);
    char text[256];
    std::snprintf(text, sizeof text, "%s screen: %.0f%% of the frame surely shows it",
                  screen_name(static_cast<Channel>(kRed + model.screen)), 100.0 * sure);
    look.seen = text;
    if (!look.keyable) return look;
    std::snprintf(
        text, sizeof text,
        ", noise %.1f%% of its brightness; %.0f%% is surely opaque, %.0f%% is to be told; rims hold "
        "%.0f%% of the screen's colour",
        100.0 * noise, 100.0 * share_of(parts.solid), 100.0 * share_of(parts.unknown),
        100.0 * static_cast<double>(parts.spill));
    look.seen += text;
    return look;
}

std::string difference_asked_for(const KnobStorage& knobs, std::span<Knob* const> all) {
    if (knobs.film) return "film correction is on";
    for (const Knob* const knob : all) {
        if (!knob->flag(kKnobHeld) || !serves_difference(*knob) || agrees_with_unmix(*knob)) continue;
        return knob->name() + " is set, which unmixing would pass over";
    }
    return {};
}
