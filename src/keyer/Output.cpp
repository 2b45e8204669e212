// The passes that form the node's output row.
#include "keyer/OutputKernel.h"
#include "keyer/VeloxaKeyer.h"

using namespace Zo::Image;

namespace {

void apply_rule(const KnobStorage& knobs, ChannelSet channels, const Row& colour, const Row& background,
                const float* matte, Row& row) {
    const auto& to_opacity = knobs.linear_matte() ? linear_opacity : opacity;
    const auto& merged = knobs.adds() ? added_colour : output_colour;
    Row k(row.x(), row.r());
    float* const opaque = k.overwrite(kAlpha);
    to_opacity(matte, opaque, row.width());
    for (const Channel c : channels) {
        if (c == kAlpha) continue;
        merged(static_cast<OutputMode>(knobs.output_mode), colour[c], background[c], opaque, row.overwrite(c),
               row.width());
    }
    if (channels.has(kAlpha)) row.share(k, kMaskAlpha);
}

}  // namespace

void VeloxaKeyer::engine_composite(int y, ChannelSet channels, Row& row) {
    Row colour(row.x(), row.r());
    colour.get(colour_source(), y, channels - kMaskAlpha);
    Row matte(row.x(), row.r());
    matte.get(final_matte(), y, kMaskAlpha);
    Row background(row.x(), row.r());
    background.get(input(2), y, channels - kMaskAlpha);
    apply_rule(knobs_, channels, colour, background, matte[kAlpha], row);
}

void VeloxaKeyer::engine_shadow(int y, ChannelSet channels, Row& row) {
    Row colour(row.x(), row.r());
    colour.get(combineShadow, y, channels + kMaskAlpha);
    Row background(row.x(), row.r());
    background.get(input(2), y, channels - kMaskAlpha);
    apply_rule(knobs_, channels, colour, background, colour[kAlpha], row);
}

// Shows the foreground as it arrived, tinted where the screen or the subject is; alpha stays the key's.
void VeloxaKeyer::draw_overlay(int y, ChannelSet channels, Row& row) {
    Row region(row.x(), row.r());
    region.get(screen_region(), y, kMaskAlpha);
    Row fg(row.x(), row.r());
    fg.get(input(0), y, kMaskRgb);
    const OverlayParams params{
        static_cast<OverlayMode>(knobs_.overlay_mode),
        knobs_.overlay_mono,
        {knobs_.overlay_color[0], knobs_.overlay_color[1], knobs_.overlay_color[2], knobs_.overlay_color[3]},
        knobs_.encodePivot[3]};
    const auto target = [&](Channel c) { return channels.has(c) ? row.overwrite(c) : nullptr; };
    overlay(params, region[kAlpha], {fg[kRed], fg[kGreen], fg[kBlue]},
            {target(kRed), target(kGreen), target(kBlue)}, row.width());
}

// After the overlay, so that held-out areas show the plain foreground there too.
void VeloxaKeyer::apply_holdout(int y, ChannelSet channels, Row& row) {
    Row holdout(row.x(), row.r());
    holdout.get(input(4), y, kMaskAlpha);
    Row fg(row.x(), row.r());
    fg.get(input(0), y, channels - kMaskAlpha);
    for (const Channel c : channels) {
        if (c == kAlpha) {
            holdout_alpha(holdout[kAlpha], row.writable(c), row.width());
        } else {
            holdout_colour(holdout[kAlpha], fg[c], row.writable(c), row.width());
        }
    }
}
