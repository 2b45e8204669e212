#include "panel/Panel.h"

#include "panel/PanelBuilder.h"

using namespace Zo::Image;
using K = KnobStorage;

namespace {

constexpr std::string_view kOverlayTooltip =
    "Select overlay rendering:<ul><li><b>off</b>: no overlay.</li>"
    "<li><b>screen</b>: tint the areas that count as backing.</li>"
    "<li><b>subject</b>: tint the areas that count as subject.</li></ul>";

}  // namespace

void PanelBuilder::main_group() {
    refs_.screen_color_ = color(&K::screen_color, "screen_color", "screen color", "Backing color.");
    spacer(closure_);
    film_ = boolean(&K::film, "film", "Film", "Enable film correction processing.");
    screen_correct_ =
        boolean(&K::screen_correct, "screen_correct", "screen correct", "Enable screen correction.");
    shadow_ = boolean(&K::shadow, "shadow", "shadow", "Enable shadow processing.");
    spill_suppression_ = boolean(&K::spill_suppression, "spill_suppression", "spill suppression",
                                 "Enable spill suppression processing.");
    spacer(closure_);
    cleanup_ = boolean(&K::cleanup, "cleanup", "cleanup", "Enable matte clean up processing.");
    color_conformance_ = boolean(&K::color_conformance, "color_conformance", "color conformance",
                                 "Enable color conformance processing.");
    spacer(closure_);
    refs_.overlay_mode_ =
        menu(&K::overlay_mode, {"off", "screen", "subject"}, "overlay_mode", "overlay", kOverlayTooltip);
    boolean(&K::overlay_mono, "overlay_mono", "show image as monochrome",
            "Make the input image grayscale so that the overlay areas can be more easily distinguished.");
    script_button(closure_, "knob overlay_mono $value", "invert", "invert");
    Tooltip(closure_, "Switch the monochrome image on or off.");
    color_alpha(&K::overlay_color, "overlay_color", "overlay color",
                "The color in which to render the overlay when it is visible.");
    spacer(closure_);
    menu(&K::output_mode, {"composite", "premultiplied", "unpremultiplied"}, "output_mode", "output mode",
         "The type of output to produce.");
}

void PanelBuilder::density_tab() {
    tab("Density", "", nullptr);
    number(&K::brights, "brights", "brights", 0, 1000, "Adjust matte density in bright foreground areas.");
    number(&K::darks, "darks", "darks", 0, 500,
           "Adjust matte density in black glossy or dark foreground objects.");
    number(
        &K::edge_kernel, "edge_kernel", "edge kernel", 0, 21,
        "The number of pixels to use as a kernel to reduce dark edges that may exist in transition areas due "
        "to an over-dense matte.");
    number(&K::warm, "warm", "warm", -1000, 1000, "Adjust matte density in warm colors (like flesh tones).");
    number(&K::cool, "cool", "cool", -1000, 1000, "Adjust matte density in cool colors.");
}

void PanelBuilder::screen_correct_tab() {
    tab("Screen Correct", "screen_correct_enable", screen_correct_, nullptr, &refs_.screen_correct_knobs_);
    color(&K::screen_tolerance, "screen_tolerance", "screen tolerance",
          "Adjusts the color range or tolerance per channel to be included or excluded from the screen "
          "overlay.");
    size(&K::screen_shrink, "screen_shrink", "shrink", 21, "Shrink (erode) the screen overlay.");
    number(&K::screen_darks_red_smaller, "screen_darks_red_smaller", "darks(red smaller)", -50, 50,
           "Adjust to include or exclude dark areas from the screen overlay where the non-screen color is "
           "greater "
           "than the red value.");
    number(
        &K::screen_darks_red_larger, "screen_darks_red_larger", "darks(red larger)", -50, 50,
        "Adjust to include or exclude dark areas from the screen overlay where the red value is greater than "
        "the non-screen color value.");
    number(&K::screen_brights_red_smaller, "screen_brights_red_smaller", "brights(red smaller)", 0, 1000,
           "Adjust to include or exclude bright areas from the screen overlay where the non-screen color "
           "value is "
           "greater than the red value.");
    number(&K::screen_brights_red_larger, "screen_brights_red_larger", "brights(red larger)", 0, 1000,
           "Adjust to include or exclude bright areas from the screen overlay where the red value is greater "
           "than "
           "the non-screen color value.");
    menu(&K::screen_orphans, {"off", "coarse", "medium", "fine"}, "screen_orphans", "orphans",
         "Controls which neighboring 'rogue' pixels are included or excluded from the screen overlay.");
    refs_.screen_correct_reset_ = reset("Reset the screen correct settings to their default values.");
}

void PanelBuilder::shadows_tab() {
    tab("Shadows", "shadow_enable", screen_correct_, shadow_);
    number(
        &K::shadows_high, "shadows_high", "high", 0, 1,
        "Lower the value on this control to reduce or eliminate unwanted shadows that are lighter than those "
        "that are to be retained.");
    number(
        &K::shadows_low, "shadows_low", "low", 0, 1,
        "Increase this value to restore the density of the darkest part of shadows that are to be retained.");
    number(&K::shadows_density, "shadows_density", "density", 0, 1000,
           "This value changes the density of shadows that are retained.");
    size(&K::shadows_blur, "shadows_blur", "blur", 21, "Blur the retained shadows.");
    refs_.shadows_tint_ =
        color(&K::shadows_tint, "shadows_tint", "tint", "Tint the color of retained shadows.");
}

void PanelBuilder::spill_tab() {
    tab("Spill", "spill_suppression_enable", spill_suppression_, nullptr, &refs_.spill_knobs_);
    number(&K::spill_cool, "spill_cool", "cool", -300, 300,
           "Adjusts the amount of spill in cool colored foreground objects.");
    number(&K::spill_warm, "spill_warm", "warm", -300, 300,
           "Adjusts the amount of spill in warm colored foreground objects.");
    number(&K::spill_midtones, "spill_midtones", "midtones", -50, 50,
           "Adjusts the amount of spill on midrange foreground objects.");
    number(&K::spill_brights, "spill_brights", "brights", 50, 200,
           "Adjusts the amount of spill on bright foreground objects.");
    number(&K::spill_darks, "spill_darks", "darks", -50, 50,
           "Adjusts the amount of spill on dark foreground objects.");
    color(&K::spill_ambience, "spill_ambience", "ambience",
          "A color that subtly influences the foreground in areas that may have contained spill.");
    number(&K::spill_strength, "spill_strength", "strength", 0, 100,
           "Adjust the intensity of effect of the ambient color.");
    color(&K::spill_backgroundveiling, "spill_backgroundveiling", "background veiling",
          "The veiling values are used to override the automatic suppression of the backing color.");
    refs_.spill_reset_ = reset("Reset the spill suppression settings to their default values.");
}

void PanelBuilder::cleanup_tab() {
    tab("Cleanup", "cleanup_enable", cleanup_);
    number(&K::cleanup_cleanup, "cleanup_cleanup", "cleanup", 0, 500,
           "Reduce imperfections or small amounts of noise in the screen (backing) area.");
    size(&K::cleanup_shrink, "cleanup_shrink", "shrink", 100,
         "Choke (reduce) the size of the cleaned-up matte.");
    size(&K::cleanup_blur, "cleanup_blur", "blur", 10, "Soften the cleaned-up matte.");
    number(&K::cleanup_recover, "cleanup_recover", "recover", 0, 1,
           "This sets a threshold below which the Cleanup controls will have no influence.");
}

void PanelBuilder::color_tab() {
    tab("Color", "color_conformance_enable", color_conformance_);
    color(&K::color_darks, "color_darks", "darks",
          "These per-channel controls increase or decrease the influence of the color matching effect on the "
          "corresponding channels in the darker parts of the image.");
    color(&K::color_midtones, "color_midtones", "midtones",
          "These per-channel controls increase or decrease the influence of the color matching effect on the "
          "corresponding channels in the mid-tones of the image.");
    color(&K::color_brights, "color_brights", "brights",
          "These per-channel controls increase or decrease the influence of the color matching effect on the "
          "corresponding channels in the bright areas of the image.");
    number(&K::color_hue, "color_hue", "hue", -300, 300,
           "Adjusts the color of the image without affecting it's brightness or color intensity (purity) "
           "values.");
    number(&K::color_saturation, "color_saturation", "saturation", -200, 200,
           "Adjusts the color intensity (purity) values without altering the color content or brightness "
           "values.");
    number(&K::color_brightness, "color_brightness", "brightness", -100, 100,
           "Adjusts the overall intensity of the image.");
}

void PanelBuilder::film_tab() {
    tab("Film", "film_enable", film_);
    number(&K::film_transparency, "film_transparency", "transparency", 0, 500,
           "Adjusts the amount of film correction in partially transparent foreground areas (such as hair "
           "detail).");
    color(&K::film_correction, "film_correction", "correction",
          "Adjusts the amount of correction per-channel in the foreground image.");
    number(&K::film_strength, "film_strength", "strength", 0, 500,
           "Adjusts the overall amount of film correction applied to the foreground image.");
    size(&K::film_shrink, "film_shrink", "shrink", 21, "Shrink (erode) the subject overlay.");
    number(&K::film_brights, "film_brights", "brights", 0, 1000,
           "Adjust to include or eliminate bright areas from the subject overlay.");
    number(&K::film_darks, "film_darks", "darks", -500, 500,
           "Adjust to include or eliminate dark areas from the subject overlay.");
}

void PanelBuilder::output_tab() {
    tab("Output", "", nullptr);
    menu(&K::matte_scale, {"knee", "linear"}, "matte_scale", "matte scale",
         "How the matte becomes transparency:<ul><li><b>knee</b>: two thirds of its range count as fully "
         "transparent already.</li>"
         "<li><b>linear</b>: over its whole range, which keeps thin hair.</li></ul>");
    menu(&K::merge, {"multiply", "add"}, "merge", "merge",
         "How the foreground joins the background:<ul><li><b>multiply</b>: the colour is multiplied by its "
         "opacity.</li>"
         "<li><b>add</b>: the processed foreground, whose backing is taken out already, is added as it is, "
         "which keeps soft edges from going dark.</li></ul>");
}

void PanelBuilder::toolbar() {
    begin_toolbar(closure_, "veloxa_toolbar");
    tool(Tool::kScreen, "toolbar_screen", "@VlxColorPicker; screen ", "Backing color.");
    tool_group("overlay");
    tool(Tool::kAddOverlay, "toolbar_addoverlay", "@VlxBrush; add ",
         "Use the Add Overlay tool to select colors that represent the blue (green) screen, including "
         "shadows.");
    tool(Tool::kRemoveOverlay, "toolbar_removeoverlay", "@VlxEraser; remove ",
         "Use the Remove Overlay tool to select colors that represent the backing.");
    link_knob(closure_, refs_.overlay_mode_, "overlay_toolbar", "");
    Tooltip(closure_, kOverlayTooltip);
    tool_group("matte");
    tool(Tool::kAddMatte, "toolbar_addmatte", "@VlxBrush; add ",
         "Use the Add Matte tool to scrub areas that should be opaque but are not.");
    tool(Tool::kRemoveNoise, "toolbar_removenoise", "@VlxEraser; noise ",
         "Use the Remove Noise tool to scrub areas in the backing that should be fully transparent but are "
         "not.");
    tool_group("spill");
    tool(Tool::kRestoreSpill, "toolbar_restorespill", "@VlxBrush; restore ",
         "Restore backing color in areas where it was removed unnecessarily or where spill has been "
         "over-suppressed.");
    tool(Tool::kRemoveSpill, "toolbar_removespill", "@VlxEraser; remove ",
         "Remove backing color from areas exhibiting excessive spill.");
    tool_group("match");
    tool(Tool::kMatchColor, "toolbar_matchcolor", "@VlxBrush; color ",
         "Use the Match Color tool to correct foreground colors to match background colors.");
    tool(Tool::kMatchShadow, "toolbar_matchshadow", "@VlxEraser; shadow ",
         "Use the Match Shadows tool to select a color for tinting of retained shadows.");
    tool_group("");
    tool(Tool::kHoldShadow, "toolbar_holdShadow", "@VlxColorPicker; hold shadow ",
         "Use the Hold Shadow tool to scrub areas in the backing with shadows that should be preserved.");
    tool(Tool::kRestoreDetail, "toolbar_restoreDetail", "@VlxColorPicker; restore detail ",
         "Restore detail in partially transparent areas");
    end_toolbar(closure_);
}

// The names are those of saved scripts, slips of the pen included.
void PanelBuilder::sample_lists() {
    constexpr std::array<std::string_view, 6> kNames{"us_add_overlay",    "us_add_overlay_cp",
                                                     "us_remove_ovelray", "us_remove_ovelray_cp",
                                                     "us_restore_spill",  "us_remove_spill"};
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        refs_.samples_[i] = custom_knob<VeloxaSample_Knob>(closure_, kNames[i], &closure_.op());
    }
}

void PanelBuilder::automatic() {
    const auto note_tool = [this](Tool tool, Knob* knob, Text tooltip) {
        refs_.tools_[static_cast<std::size_t>(tool)] = knob;
        SetFlags(closure_, kKnobLooks);
        Tooltip(closure_, tooltip);
    };
    note_tool(Tool::kFindScreen,
              button(closure_, "find_screen", "Find Screen", &storage_.screen_choice,
                     {"auto", "green", "blue", "red"}),
              "Find the backing in the foreground and take its color for the screen color.");
    note_tool(
        Tool::kSetUp, button(closure_, "set_up", "Set Up Automatically"),
        "Set output, overlay, density and clean up from the foreground, and the screen color where none is "
        "chosen.");
}

void build_panel(Knob_Closure& closure, KnobStorage& storage, PanelKnobs& refs) {
    PanelBuilder panel(closure, storage, refs);
    panel.main_group();
    panel.density_tab();
    panel.screen_correct_tab();
    panel.shadows_tab();
    panel.spill_tab();
    panel.cleanup_tab();
    panel.color_tab();
    panel.film_tab();
    panel.output_tab();
    panel.toolbar();
    panel.sample_lists();
    panel.automatic();
    panel.finish();
}
