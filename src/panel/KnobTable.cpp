#include "panel/KnobTable.h"

#include <algorithm>
#include <iterator>

#include "controls/Controls.h"

// A knob has its field's name.
#define KNOB(field, ...)                         \
    KnobRow {                                    \
        &KnobStorage::field, #field, __VA_ARGS__ \
    }

namespace {

namespace c = controls;
using K = KnobStorage;
using Kind = KnobRow::Kind;
using Reach = KnobReach;
using Scale = KnobTarget::Scale;
using Text = KnobRow::Text;

constexpr Reach range(double low, double high) {
    return {.low = low, .high = high};
}

constexpr Reach pixels(double low, double high) {
    return {.low = low, .high = high, .pixels = true};
}

constexpr KnobTarget to(int control, int second = KnobTarget::kNone, int third = KnobTarget::kNone) {
    return {.controls = {control, second, third}};
}

constexpr KnobTarget to(int width, std::int32_t ControlBlock::*height) {
    return {.controls = to(width).controls, .height = height};
}

constexpr KnobTarget to(const ControlGroup& colour, Scale scale = Scale::kNumber) {
    return {.controls = colour, .by_role = true, .scale = scale};
}

constexpr KnobTarget level(const ControlGroup& colour) {
    return to(colour, Scale::kLevel);
}

constexpr KnobTarget level(int control) {
    return {.controls = to(control).controls, .scale = Scale::kLevel};
}

constexpr KnobRow piece(Kind kind, Text label = "", Text name = "", Text tooltip = "") {
    return {.name = name, .label = label, .tooltip = tooltip, .kind = kind};
}

// Its knobs wait for one switch, or for two.
constexpr KnobRow tab(Text label, bool K::*enable = nullptr, bool K::*second_enable = nullptr) {
    return {.label = label, .kind = Kind::kTab, .enable = enable, .second_enable = second_enable};
}

constexpr KnobRow link(KnobField to, Text name, Text label) {
    return {.field = to, .name = name, .label = label, .kind = Kind::kLink};
}

// Restores the settings of its tab, which it ends, and empties the sample lists that go with it.
constexpr KnobRow reset(Text tooltip) {
    return piece(Kind::kButton, "reset", "reset", tooltip);
}

constexpr KnobRow tool(Tool tool, Text name, Text label, Text tooltip) {
    KnobRow row = piece(Kind::kToolButton, label, name, tooltip);
    row.number = static_cast<int>(tool);
    return row;
}

// `tab` is the one whose reset empties the list.
constexpr KnobRow samples(SampleAction action, Text name, Text tab) {
    return {.name = name, .label = tab, .kind = Kind::kCustom, .number = static_cast<int>(action)};
}

constexpr KnobRow kTable[] = {
    KNOB(screen_color, "screen color", "Backing color.", {}, level(c::kBackingColor)),
    piece(Kind::kText, " "),
    KNOB(film, "Film", "Enable film correction processing."),
    KNOB(screen_correct, "screen correct", "Enable screen correction."),
    KNOB(shadow, "shadow", "Enable shadow processing."),
    KNOB(spill_suppression, "spill suppression", "Enable spill suppression processing."),
    piece(Kind::kText, " "),
    KNOB(cleanup, "cleanup", "Enable matte clean up processing."),
    KNOB(color_conformance, "color conformance", "Enable color conformance processing."),
    piece(Kind::kText, " "),
    KNOB(overlay_mode, "overlay",
         "Select overlay rendering:<ul><li><b>off</b>: no overlay.</li><li><b>screen</b>: tint the areas "
         "that count as backing.</li><li><b>subject</b>: tint the areas that count as subject.</li></ul>",
         {}, {}, {"off", "screen", "subject"}),
    KNOB(overlay_mono, "show image as monochrome",
         "Make the input image grayscale so that the overlay areas can be more easily distinguished."),
    piece(Kind::kScriptButton, "invert", "invert", "Switch the monochrome image on or off."),
    KNOB(overlay_color, "overlay color", "The color in which to render the overlay when it is visible."),
    piece(Kind::kText, " "),
    KNOB(output_mode, "output mode", "The type of output to produce.", {}, {},
         {"composite", "premultiplied", "unpremultiplied"}),
    tab("Density"),
    KNOB(brights, "brights", "Adjust matte density in bright foreground areas.", range(0, 1000),
         to(c::kMatteDensityBrights)),
    // Strokes may need less than the slider offers.
    KNOB(darks, "darks", "Adjust matte density in black glossy or dark foreground objects.",
         range(0, 500).turned(-500, 500), to(c::kMatteDensityDarks)),
    KNOB(edge_kernel, "edge kernel",
         "The number of pixels to use as a kernel to reduce dark edges that may exist in transition areas "
         "due to an over-dense matte.",
         pixels(0, 21), to(c::kEdgeKernel, c::kKernelHeight)),
    KNOB(warm, "warm", "Adjust matte density in warm colors (like flesh tones).", range(-1000, 1000),
         to(c::kMatteDensityWarm)),
    KNOB(cool, "cool", "Adjust matte density in cool colors.", range(-1000, 1000), to(c::kMatteDensityCool)),
    tab("Screen Correct", &K::screen_correct),
    link(&K::screen_correct, "screen_correct_enable", "enable"),
    KNOB(screen_tolerance, "screen tolerance",
         "Adjusts the color range or tolerance per channel to be included or excluded from the screen "
         "overlay.",
         {}, to(c::kScreenTolerance, Scale::kTolerance).times(2, -1).when_off()),
    KNOB(screen_shrink, "shrink", "Shrink (erode) the screen overlay.", pixels(0, 21),
         to(c::kScreenOverlayShrink, &ControlBlock::overlayShrinkV).when_off()),
    KNOB(screen_darks_red_smaller, "darks(red smaller)",
         "Adjust to include or exclude dark areas from the screen overlay where the non-screen color is "
         "greater than the red value.",
         range(-50, 50), to(c::kRotoDarksGR).when_off()),
    KNOB(screen_darks_red_larger, "darks(red larger)",
         "Adjust to include or exclude dark areas from the screen overlay where the red value is greater "
         "than the non-screen color value.",
         range(-50, 50), to(c::kRotoDarksRG).when_off()),
    KNOB(screen_brights_red_smaller, "brights(red smaller)",
         "Adjust to include or exclude bright areas from the screen overlay where the non-screen color value "
         "is greater than the red value.",
         range(0, 1000), to(c::kRotoBrightsGR).when_off()),
    KNOB(screen_brights_red_larger, "brights(red larger)",
         "Adjust to include or exclude bright areas from the screen overlay where the red value is greater "
         "than the non-screen color value.",
         range(0, 1000), to(c::kRotoBrightsRG).when_off()),
    KNOB(screen_orphans, "orphans",
         "Controls which neighboring 'rogue' pixels are included or excluded from the screen overlay.", {},
         to(c::kRotoOrphans).times(2).when_off(), {"off", "coarse", "medium", "fine"}),
    reset("Reset the screen correct settings to their default values."),
    tab("Shadows", &K::screen_correct, &K::shadow),
    link(&K::shadow, "shadow_enable", "enable"),
    KNOB(shadows_high, "high",
         "Lower the value on this control to reduce or eliminate unwanted shadows that are lighter than "
         "those that are to be retained.",
         range(0, 1), level(c::kShadowHigh)),
    KNOB(shadows_low, "low",
         "Increase this value to restore the density of the darkest part of shadows that are to be retained.",
         range(0, 1), level(c::kShadowLow)),
    KNOB(shadows_density, "density", "This value changes the density of shadows that are retained.",
         range(0, 1000), to(c::kShadowDensity)),
    KNOB(shadows_blur, "blur", "Blur the retained shadows.", pixels(0, 21),
         to(c::kShadowBlur, c::kShadowBlurV)),
    KNOB(shadows_tint, "tint", "Tint the color of retained shadows.", {}, level(c::kShadowTint)),
    tab("Spill", &K::spill_suppression),
    link(&K::spill_suppression, "spill_suppression_enable", "enable"),
    KNOB(spill_cool, "cool", "Adjusts the amount of spill in cool colored foreground objects.",
         range(-300, 300), to(c::kSpillCool)),
    KNOB(spill_warm, "warm", "Adjusts the amount of spill in warm colored foreground objects.",
         range(-300, 300), to(c::kSpillWarm)),
    KNOB(spill_midtones, "midtones", "Adjusts the amount of spill on midrange foreground objects.",
         range(-50, 50), to(c::kSpillMidTones)),
    KNOB(spill_brights, "brights", "Adjusts the amount of spill on bright foreground objects.",
         range(50, 200), to(c::kSpillBrights)),
    KNOB(spill_darks, "darks", "Adjusts the amount of spill on dark foreground objects.", range(-50, 50),
         to(c::kSpillDarks)),
    KNOB(spill_ambience, "ambience",
         "A color that subtly influences the foreground in areas that may have contained spill.", {},
         level(c::kAmbiance)),
    KNOB(spill_strength, "strength", "Adjust the intensity of effect of the ambient color.", range(0, 100),
         to(c::kStrength)),
    KNOB(spill_backgroundveiling, "background veiling",
         "The veiling values are used to override the automatic suppression of the backing color.", {},
         to(c::kBgVeiling).times(250).when_off()),
    reset("Reset the spill suppression settings to their default values."),
    tab("Cleanup", &K::cleanup),
    link(&K::cleanup, "cleanup_enable", "enable"),
    KNOB(cleanup_cleanup, "cleanup",
         "Reduce imperfections or small amounts of noise in the screen (backing) area.", range(0, 500),
         to(c::kCleanUp)),
    KNOB(cleanup_shrink, "shrink", "Choke (reduce) the size of the cleaned-up matte.", pixels(0, 100),
         to(c::kCleanUpShrink, c::kCUShrinkV)),
    KNOB(cleanup_blur, "blur", "Soften the cleaned-up matte.", pixels(0, 10),
         to(c::kCleanUpBlur, c::kCUBlurV)),
    KNOB(cleanup_recover, "recover",
         "This sets a threshold below which the Cleanup controls will have no influence.", range(0, 1),
         level(c::kCleanUpRecover)),
    tab("Color", &K::color_conformance),
    link(&K::color_conformance, "color_conformance_enable", "enable"),
    KNOB(color_darks, "darks",
         "These per-channel controls increase or decrease the influence of the color matching effect on the "
         "corresponding channels in the darker parts of the image.",
         {}, to(c::kColorConformDarks).times(200, -100)),
    KNOB(color_midtones, "midtones",
         "These per-channel controls increase or decrease the influence of the color matching effect on the "
         "corresponding channels in the mid-tones of the image.",
         {}, to(c::kColorConformMidTones).times(200, -100)),
    KNOB(color_brights, "brights",
         "These per-channel controls increase or decrease the influence of the color matching effect on the "
         "corresponding channels in the bright areas of the image.",
         {}, to(c::kColorConformBrights).times(200)),
    KNOB(color_hue, "hue",
         "Adjusts the color of the image without affecting it's brightness or color intensity (purity) "
         "values.",
         range(-300, 300), to(c::kHue)),
    KNOB(color_saturation, "saturation",
         "Adjusts the color intensity (purity) values without altering the color content or brightness "
         "values.",
         range(-200, 200), to(c::kSaturation)),
    KNOB(color_brightness, "brightness", "Adjusts the overall intensity of the image.", range(-100, 100),
         to(c::kBrightness)),
    tab("Unmix"),
    KNOB(unmix_method, "method",
         "How the matte is made:<ul><li><b>colour difference</b>: by how far the backing's channel exceeds "
         "the two others.</li><li><b>unmix</b>: each pixel is taken apart into backing and subject, with "
         "the backing's light measured all over the frame and the subject's colours taken from what is "
         "solid nearby. Spill is gone then already, the foreground is added, and of the tabs only Shadows, "
         "Cleanup, Color and Output still count.</li></ul>",
         {}, {}, {"colour difference", "unmix"}),
    KNOB(unmix_veil, "veil",
         "How much of the screen's color see-through things such as veils and glass have of their own, on "
         "top of "
         "their share of the spill on the subject's rims. Raise it where they come out too thin, lower it "
         "where "
         "the backing still shows in them.",
         range(0, 1)),
    KNOB(unmix_solid, "solid",
         "How opaque something must look to be taken for solid. Lower it where holes open in the subject, "
         "raise it where see-through parts close up.",
         range(0.5, 0.95)),
    KNOB(unmix_detail, "detail",
         "Raise it to keep fainter hair and smoke, lower it where grain in the backing is kept as detail.",
         range(0, 2)),
    KNOB(unmix_denoise, "denoise",
         "How strongly grain is taken out of the matte. Raise it where the backing is speckled or the "
         "subject grainy, lower it where soft edges turn hard.",
         range(0, 2)),
    KNOB(unmix_folds, "folds",
         "How much darker or brighter than around it the backing may be. Raise it where folds and soft "
         "shadows stay in the matte, lower it where dark parts of the subject go missing.",
         range(0, 2)),
    KNOB(unmix_spill, "spill",
         "How much of the backing's light is taken out of the subject's color. Lower it where colors of "
         "the screen's hue turn grey, raise it where rims stay tinted.",
         range(0, 2)),
    KNOB(unmix_encoding, "encoding",
         "What the values of foreground and background are:<ul><li><b>as stored</b>: "
         "light.</li><li><b>sRGB</b>: display "
         "values.</li><li><b>logarithmic</b>: density of film scans.</li></ul>Edges mix in light: with the "
         "wrong choice they come out too dark or too bright.",
         {}, {}, {"as stored", "sRGB", "logarithmic"}),
    KNOB(unmix_opacity, "opacity of strokes",
         "About how opaque the next stroke of the see-through tool is: 0 shows the backing alone.",
         range(0, 1)),
    {.name = "unmix_analyse",
     .label = "Add Frame to Shot",
     .tooltip = "Measure this frame, and key all frames by what those that were added have in common: the "
                "backing's color and noise, the colors of the subject's rims, the spill. A few frames spread "
                "over the shot keep the matte from breathing; reset forgets them.",
     .kind = Kind::kButton,
     .number = static_cast<int>(Tool::kAnalyseShot)},
    reset("Reset the unmix settings to their default values, the method too, and forget its strokes and the "
          "frames of the shot."),
    tab("Film", &K::film),
    link(&K::film, "film_enable", "enable"),
    KNOB(film_transparency, "transparency",
         "Adjusts the amount of film correction in partially transparent foreground areas (such as hair "
         "detail).",
         range(0, 500), to(c::kFilmBrights)),
    KNOB(film_correction, "correction",
         "Adjusts the amount of correction per-channel in the foreground image.", {},
         to(c::kFilmCorrectionRed, c::kFilmCorrectionGreen, c::kFilmCorrectionBlue).times(100)),
    KNOB(film_strength, "strength",
         "Adjusts the overall amount of film correction applied to the foreground image.", range(0, 500),
         to(c::kFilmStrength)),
    KNOB(film_shrink, "shrink", "Shrink (erode) the subject overlay.", pixels(0, 21),
         to(c::kShrinkSubjectOverlay, &ControlBlock::subjectShrinkV)),
    KNOB(film_brights, "brights", "Adjust to include or eliminate bright areas from the subject overlay.",
         range(0, 1000), to(c::kInnerWarmDensity)),
    KNOB(film_darks, "darks", "Adjust to include or eliminate dark areas from the subject overlay.",
         range(-500, 500), to(c::kFilmDarks)),
    tab("Output"),
    KNOB(matte_scale, "matte scale",
         "How the matte becomes transparency:<ul><li><b>knee</b>: two thirds of its range count as fully "
         "transparent already.</li><li><b>linear</b>: over its whole range, which keeps thin "
         "hair.</li></ul>The "
         "method unmix is always linear.",
         {}, {}, {"knee", "linear"}),
    KNOB(merge, "merge",
         "How the foreground joins the background:<ul><li><b>multiply</b>: the colour is multiplied by its "
         "opacity.</li><li><b>add</b>: the processed foreground, whose backing is taken out already, is "
         "added as it is, which keeps soft edges from going dark.</li></ul>The method unmix always adds.",
         {}, {}, {"multiply", "add"}),
    KNOB(highlights, "highlights",
         "What becomes of foreground brighter than 1:<ul><li><b>clip</b>: it goes through the key, whose "
         "bend of high values tints and overdoes it.</li><li><b>keep</b>: from 1 to 2 it goes over into the "
         "foreground's own values. The method unmix keeps them as long as shadows and color conformance "
         "are off.</li></ul>",
         {}, {}, {"clip", "keep"}),
    piece(Kind::kBeginToolbar, "", "veloxa_toolbar"),
    tool(Tool::kScreen, "toolbar_screen", "@VlxColorPicker; screen ", "Backing color."),
    piece(Kind::kToolbarSeparator),
    piece(Kind::kText, "overlay"),
    tool(Tool::kAddOverlay, "toolbar_addoverlay", "@VlxBrush; add ",
         "Use the Add Overlay tool to select colors that represent the blue (green) screen, including "
         "shadows."),
    tool(Tool::kRemoveOverlay, "toolbar_removeoverlay", "@VlxEraser; remove ",
         "Use the Remove Overlay tool to select colors that represent the backing."),
    link(&K::overlay_mode, "overlay_toolbar", ""),
    piece(Kind::kToolbarSeparator),
    piece(Kind::kText, "matte"),
    tool(Tool::kAddMatte, "toolbar_addmatte", "@VlxBrush; add ",
         "Use the Add Matte tool to scrub areas that should be opaque but are not."),
    tool(Tool::kRemoveNoise, "toolbar_removenoise", "@VlxEraser; noise ",
         "Use the Remove Noise tool to scrub areas in the backing that should be fully transparent but are "
         "not."),
    piece(Kind::kToolbarSeparator),
    piece(Kind::kText, "spill"),
    tool(Tool::kRestoreSpill, "toolbar_restorespill", "@VlxBrush; restore ",
         "Restore backing color in areas where it was removed unnecessarily or where spill has been "
         "over-suppressed."),
    tool(Tool::kRemoveSpill, "toolbar_removespill", "@VlxEraser; remove ",
         "Remove backing color from areas exhibiting excessive spill."),
    piece(Kind::kToolbarSeparator),
    piece(Kind::kText, "match"),
    tool(Tool::kMatchColor, "toolbar_matchcolor", "@VlxBrush; color ",
         "Use the Match Color tool to correct foreground colors to match background colors."),
    tool(Tool::kMatchShadow, "toolbar_matchshadow", "@VlxEraser; shadow ",
         "Use the Match Shadows tool to select a color for tinting of retained shadows."),
    piece(Kind::kToolbarSeparator),
    tool(Tool::kHoldShadow, "toolbar_holdShadow", "@VlxColorPicker; hold shadow ",
         "Use the Hold Shadow tool to scrub areas in the backing with shadows that should be preserved."),
    tool(Tool::kRestoreDetail, "toolbar_restoreDetail", "@VlxColorPicker; restore detail ",
         "Restore detail in partially transparent areas"),
    piece(Kind::kToolbarSeparator),
    piece(Kind::kText, "unmix"),
    tool(Tool::kUnmixBacking, "toolbar_unmixbacking", "@VlxBrush; backing ",
         "Scrub what is backing and yet stays in the matte of the method unmix: marks, tape, odd folds."),
    tool(Tool::kUnmixSolid, "toolbar_unmixsolid", "@VlxBrush; solid ",
         "Scrub what is opaque and yet comes out see-through with the method unmix."),
    tool(Tool::kUnmixSeeThrough, "toolbar_unmixseethrough", "@VlxBrush; see-through ",
         "Scrub what is see-through and comes out too opaque, or too thin, with the method unmix; the knob "
         "opacity of strokes on the tab Unmix tells how opaque it is."),
    tool(Tool::kUnmixOwn, "toolbar_unmixown", "@VlxEraser; no spill ",
         "Scrub what has the screen's hue of its own, so that the method unmix takes no spill out of it."),
    piece(Kind::kEndToolbar),
    // The names are those of saved scripts, slips of the pen included.
    samples(SampleAction::kAddOverlay, "us_add_overlay", "Screen Correct"),
    samples(SampleAction::kAddOverlayCp, "us_add_overlay_cp", "Screen Correct"),
    samples(SampleAction::kRemoveOverlay, "us_remove_ovelray", "Screen Correct"),
    samples(SampleAction::kRemoveOverlayCp, "us_remove_ovelray_cp", "Screen Correct"),
    samples(SampleAction::kRestoreSpill, "us_restore_spill", "Spill"),
    samples(SampleAction::kRemoveSpill, "us_remove_spill", "Spill"),
    samples(SampleAction::kUnmixBacking, "us_unmix_backing", "Unmix"),
    samples(SampleAction::kUnmixSolid, "us_unmix_solid", "Unmix"),
    samples(SampleAction::kUnmixSeeThrough, "us_unmix_see_through", "Unmix"),
    samples(SampleAction::kUnmixOwn, "us_unmix_own", "Unmix"),
    {.name = "unmix_shot", .label = "Unmix", .kind = Kind::kCustom, .number = kShotKnob},
    {.name = "find_screen",
     .label = "Find Screen",
     .tooltip = "Find the backing in the foreground and take its color for the screen color.",
     .items = {"auto", "green", "blue", "red"},
     .kind = Kind::kButton,
     .number = static_cast<int>(Tool::kFindScreen)},
    {.name = "set_up",
     .label = "Set Up Automatically",
     .tooltip =
         "Choose the method by the foreground, and for the colour difference set output, overlay, density, "
         "clean up and spill; the screen color too, where none is chosen.",
     .kind = Kind::kButton,
     .number = static_cast<int>(Tool::kSetUp)},
};

static_assert(std::size(kTable) <= KnobFields::kMost);

}  // namespace

std::span<const KnobRow> knob_table() {
    return kTable;
}

std::size_t knob_row(KnobField field) {
    const auto* const row = std::find_if(std::begin(kTable), std::end(kTable),
                                         [&](const KnobRow& r) { return r.setting() && r.field == field; });
    return static_cast<std::size_t>(row - kTable);
}
