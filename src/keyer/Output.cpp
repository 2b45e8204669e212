// The passes that form the node's output row.
#include "keyer/OutputKernel.h"
#include "keyer/VeloxaKeyer.h"

using namespace Zo::Image;

namespace {

struct OutputRows {
    const Row& colour;
    const Row& background;
    const float* k;          // the opacity in the end
    const float* processed;  // the matte that the processed colour was made with
};

void opacity_of(const KnobStorage& knobs, const float* matte, float* k, std::size_t n) {
    (knobs.linear_matte() ? linear_opacity : opacity)(matte, k, n);
}

void apply_rule(const KnobStorage& knobs, ChannelSet colours, const OutputRows& from, Row& row) {
    Row share(row.x(), row.r());
    if (knobs.adds()) {
        const auto& share_of = knobs.linear_matte() ? linear_opacity : colour_share;
        share_of(from.processed, share.overwrite(kAlpha), row.width());
    }
    const auto mode = static_cast<OutputMode>(knobs.output_mode);
    for (const Channel c : colours) {
        float* const out = row.overwrite(c);
        if (knobs.adds()) {
            added_colour(mode, from.colour[c], from.background[c], from.k, share[kAlpha], out, row.width());
        } else {
            output_colour(mode, from.colour[c], from.background[c], from.k, out, row.width());
        }
    }
}

// What delivers the unmixed colour, as the plate would store it or on the working scale.
enum class UnmixedFrom { kPlate, kCorrection, kShadows };

void apply_unmixed_rule(const KnobStorage& knobs, UnmixedFrom stage, ChannelSet colours,
                        const OutputRows& from, Row& row) {
    Row share(row.x(), row.r());
    float* const held = share.overwrite(kAlpha);
    linear_opacity(from.processed, held, row.width());
    if (stage == UnmixedFrom::kShadows) larger_opacity(from.k, held, row.width());
    const UnmixedParams params{static_cast<OutputMode>(knobs.output_mode),
                               static_cast<Encoding>(knobs.unmix_encoding)};
    for (const Channel c : colours) {
        float* const out = row.overwrite(c);
        const float* colour = from.colour[c];
        if (stage != UnmixedFrom::kPlate) {
            decoded_colour(colour, out, row.width());
            colour = out;
        }
        unmixed_colour(params, colour, from.background[c], from.k, held, out, row.width());
    }
}

}  // namespace

void VeloxaKeyer::engine_composite(int y, ChannelSet channels, Row& row) {
    Row colour(row.x(), row.r());
    colour.get(colour_source(), y, channels - kMaskAlpha);
    Row matte(row.x(), row.r());
    matte.get(final_matte(), y, kMaskAlpha);
    finish(y, channels, colour, matte, row);
}

void VeloxaKeyer::engine_shadow(int y, ChannelSet channels, Row& row) {
    Row colour(row.x(), row.r());
    colour.get(combineShadow, y, channels + kMaskAlpha);
    finish(y, channels, colour, colour, row);
}

void VeloxaKeyer::finish(int y, ChannelSet channels, const Row& colour, const Row& matte, Row& row) {
    const ChannelSet colours = channels - kMaskAlpha;
    Row background(row.x(), row.r());
    background.get(input(2), y, colours);
    Row processed(row.x(), row.r());
    if (knobs_.adds()) processed.get(keyed_matte(), y, kMaskAlpha);
    Row k(row.x(), row.r());
    opacity_of(knobs_, matte[kAlpha], k.overwrite(kAlpha), row.width());
    const OutputRows rows{colour, background, k[kAlpha], processed[kAlpha]};
    if (knobs_.unmixes()) {
        const auto stage = shadows_on()               ? UnmixedFrom::kShadows
                           : knobs_.color_conformance ? UnmixedFrom::kCorrection
                                                      : UnmixedFrom::kPlate;
        apply_unmixed_rule(knobs_, stage, colours, rows, row);
    } else {
        apply_rule(knobs_, colours, rows, row);
    }
    if (knobs_.keeps_highlights()) put_highlights_back(y, colours, background, k, row);
    if (channels.has(kAlpha)) row.share(k, kMaskAlpha);
}

void VeloxaKeyer::put_highlights_back(int y, ChannelSet colours, const Row& background, const Row& k,
                                      Row& row) {
    Row fg(row.x(), row.r());
    fg.get(input(0), y, colours + kMaskRgb);
    Row subject(row.x(), row.r());
    subject.get(final_matte(), y, kMaskAlpha);
    float* const keep = subject.writable(kAlpha);
    opacity_of(knobs_, keep, keep, row.width());
    highlight_share({fg[kRed], fg[kGreen], fg[kBlue]}, keep, k[kAlpha], keep, row.width());
    const auto mode = static_cast<OutputMode>(knobs_.output_mode);
    for (const Channel c : colours& kMaskRgb) {
        keep_highlights(mode, keep, fg[c], background[c], k[kAlpha], row.writable(c), row.width());
    }
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
