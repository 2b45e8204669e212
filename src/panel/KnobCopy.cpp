#include "panel/KnobCopy.h"

#include "ZoImage/Convert.h"
#include "controls/ChannelRoles.h"
#include "controls/Controls.h"
#include "panel/InputFlags.h"
#include "stages/WorkingScale.h"

namespace {

using Color = KnobStorage::Color;

// A colour's components as the roles of the present screen take them, stored in that order.
void set_color(ControlBlock& controls, const ControlGroup& group, const Color& rgb) {
    const auto color_index = controls.get(controls::kColorIndex);
    const auto role = [&](int n) { return rgb[static_cast<std::size_t>(ChannelForRole(color_index, n))]; };
    controls.set(group, role(0), role(1), role(2));
}

Color encoded(const Color& rgb, const KnobStorage::ColorAlpha& pivot) {
    return {encode(rgb[0], pivot[0]), encode(rgb[1], pivot[1]), encode(rgb[2], pivot[2])};
}

Color scaled(const Color& rgb, float factor, float offset) {
    return {factor * rgb[0] + offset, factor * rgb[1] + offset, factor * rgb[2] + offset};
}

// Twice a menu index, whatever the field holds.
std::int32_t doubled(std::int32_t index) {
    return static_cast<std::int32_t>(2U * static_cast<std::uint32_t>(index));
}

void copy_screen(const KnobStorage& k, std::uint32_t flags, ControlBlock& out) {
    const auto& pivot = k.encodePivot;
    const Color backing = encoded(k.screen_color, pivot);
    set_backing_color(backing[0], backing[1], backing[2], out);
    const auto flag = [&](std::uint32_t bit) { return (flags & bit) != 0 ? 1 : 0; };
    out.set(controls::kCleanPlate, flag(kCpUsable));
    out.set(controls::kHoldout, flag(kHmConnected));
    out.set(controls::kGarbage, flag(kGmConnected));
    out.set(controls::kScreenCorrect, k.overlay_mode != 0 || k.screen_correct ? 1 : 0);

    Color tolerance;
    for (std::size_t i = 0; i < 3; ++i) tolerance[i] = 2.0f * (k.screen_tolerance[i] - 0.5f);
    set_color(out, controls::kScreenTolerance, encoded(tolerance, pivot));
    out.set(controls::kRotoBrightsGR, k.screen_brights_red_smaller);
    out.set(controls::kRotoDarksGR, k.screen_darks_red_smaller);
    out.set(controls::kRotoBrightsRG, k.screen_brights_red_larger);
    out.set(controls::kRotoDarksRG, k.screen_darks_red_larger);
    out.set(controls::kScreenOverlayShrink, k.screen_shrink[0]);
    out.overlayShrinkV = Zo::Image::to_int(k.screen_shrink[1]);
    out.set(controls::kRotoOrphans, doubled(k.screen_orphans));
}

void copy_density(const KnobStorage& k, ControlBlock& out) {
    out.set(controls::kMatteDensityBrights, k.brights);
    out.set(controls::kMatteDensityDarks, k.darks);
    out.set(controls::kMatteDensityCool, k.cool);
    out.set(controls::kMatteDensityWarm, k.warm);
    out.set(controls::kEdgeKernel, k.edge_kernel);
    out.set(controls::kKernelHeight, k.edge_kernel);
}

void copy_shadow(const KnobStorage& k, ControlBlock& out) {
    const float pivot = k.encodePivot[3];
    set_color(out, controls::kShadowTint, encoded(k.shadows_tint, k.encodePivot));
    out.set(controls::kShadowDensity, k.shadows_density);
    out.set(controls::kShadowHigh, encode(k.shadows_high, pivot));
    out.set(controls::kShadowLow, encode(k.shadows_low, pivot));
    out.set(controls::kShadowBlur, k.shadows_blur[0]);
    out.set(controls::kShadowBlurV, k.shadows_blur[1]);
}

void copy_spill(const KnobStorage& k, ControlBlock& out) {
    set_color(out, controls::kAmbiance, encoded(k.spill_ambience, k.encodePivot));
    out.set(controls::kSpillDarks, k.spill_darks);
    out.set(controls::kSpillBrights, k.spill_brights);
    out.set(controls::kSpillMidTones, k.spill_midtones);
    out.set(controls::kSpillCool, k.spill_cool);
    out.set(controls::kSpillWarm, k.spill_warm);
    out.set(controls::kStrength, k.spill_strength);
}

void copy_cleanup(const KnobStorage& k, ControlBlock& out) {
    out.set(controls::kCleanUpShrink, k.cleanup_shrink[0]);
    out.set(controls::kCUShrinkV, k.cleanup_shrink[1]);
    out.set(controls::kCleanUpBlur, k.cleanup_blur[0]);
    out.set(controls::kCUBlurV, k.cleanup_blur[1]);
    out.set(controls::kCleanUp, k.cleanup_cleanup);
    out.set(controls::kCleanUpRecover, encode(k.cleanup_recover, k.encodePivot[3]));
}

// Film correction works on red, green and blue by name, not on roles.
void copy_film(const KnobStorage& k, ControlBlock& out) {
    out.set(controls::kFilmBrights, k.film_transparency);
    out.set(controls::kFilmCorrectionRed, k.film_correction[0] * 100.0f);
    out.set(controls::kFilmCorrectionGreen, k.film_correction[1] * 100.0f);
    out.set(controls::kFilmCorrectionBlue, k.film_correction[2] * 100.0f);
    out.set(controls::kFilmStrength, k.film_strength);
    out.set(controls::kShrinkSubjectOverlay, k.film_shrink[0]);
    out.subjectShrinkV = Zo::Image::to_int(k.film_shrink[1]);
    out.set(controls::kInnerWarmDensity, k.film_brights);
    out.set(controls::kFilmDarks, k.film_darks);
}

// Brights have 100, not 0, as their neutral value.
void copy_color(const KnobStorage& k, ControlBlock& out) {
    set_color(out, controls::kColorConformDarks, scaled(k.color_darks, 200.0f, -100.0f));
    set_color(out, controls::kColorConformMidTones, scaled(k.color_midtones, 200.0f, -100.0f));
    set_color(out, controls::kColorConformBrights, scaled(k.color_brights, 200.0f, 0.0f));
    out.set(controls::kHue, k.color_hue);
    out.set(controls::kSaturation, k.color_saturation);
    out.set(controls::kBrightness, k.color_brightness);
}

}  // namespace

void set_backing_color(float red, float green, float blue, ControlBlock& controls) {
    std::int32_t primary = 0;
    if (green > red && green > blue) {
        primary = 1;
    } else if (red > green && red > blue) {
        primary = 2;
    }
    controls.set(controls::kColorIndex, primary);
    set_color(controls, controls::kBackingColor, {red, green, blue});
}

void copy_knobs(const KnobStorage& knobs, std::uint32_t input_flags, ControlBlock& controls) {
    copy_screen(knobs, input_flags, controls);
    copy_density(knobs, controls);
    if (knobs.screen_correct && knobs.shadow) copy_shadow(knobs, controls);
    if (knobs.spill_suppression) copy_spill(knobs, controls);
    if (knobs.cleanup) copy_cleanup(knobs, controls);
    if (knobs.film) copy_film(knobs, controls);
    if (knobs.color_conformance) copy_color(knobs, controls);
    // The knob's default, 0.4, stands for all of the backing.
    set_color(controls, controls::kBgVeiling, scaled(knobs.spill_backgroundveiling, 250.0f, 0.0f));
}
