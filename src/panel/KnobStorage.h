// The values that the keyer's knobs write, each field named after its knob, with the knobs' defaults.
//
// Colours are red, green, blue(, alpha); sizes are width, height in pixels; menus hold the item's index.
#pragma once

#include <array>
#include <cstdint>

struct KnobStorage {
    using Color = std::array<float, 3>;
    using ColorAlpha = std::array<float, 4>;
    using Size = std::array<double, 2>;

    // Main group
    Color screen_color{};  // 0, 0, 0: none chosen yet
    bool film = false;
    bool screen_correct = true;
    bool shadow = false;
    bool spill_suppression = true;
    bool cleanup = false;
    bool color_conformance = false;
    std::int32_t overlay_mode = 0;  // off, screen, subject
    bool overlay_mono = false;
    ColorAlpha overlay_color{0.58f, 0.07f, 0.22f, 0.5f};
    std::int32_t output_mode = 0;  // composite, premultiplied, unpremultiplied

    // Density
    float brights = 100.0f;
    float darks = 0.0f;
    float edge_kernel = 0.0f;
    float warm = 0.0f;
    float cool = 0.0f;

    // Screen Correct
    Color screen_tolerance{0.51f, 0.51f, 0.52f};
    Size screen_shrink{2.0, 2.0};
    float screen_darks_red_smaller = 0.0f;
    float screen_darks_red_larger = 0.0f;
    float screen_brights_red_smaller = 100.0f;
    float screen_brights_red_larger = 100.0f;
    std::int32_t screen_orphans = 1;  // off, coarse, medium, fine

    // Shadows
    float shadows_high = 1.0f;
    float shadows_low = 0.0f;
    float shadows_density = 100.0f;
    Size shadows_blur{};
    Color shadows_tint{};

    // Spill
    float spill_cool = 50.0f;
    float spill_warm = 50.0f;
    float spill_midtones = 0.0f;
    float spill_brights = 100.0f;
    float spill_darks = 0.0f;
    Color spill_ambience{0.5f, 0.5f, 0.5f};
    float spill_strength = 40.0f;
    Color spill_backgroundveiling{0.4f, 0.4f, 0.4f};

    // Cleanup
    float cleanup_cleanup = 100.0f;
    Size cleanup_shrink{};
    Size cleanup_blur{};
    float cleanup_recover = 0.0f;

    // Color
    Color color_darks{0.5f, 0.5f, 0.5f};
    Color color_midtones{0.5f, 0.5f, 0.5f};
    Color color_brights{0.5f, 0.5f, 0.5f};
    float color_hue = 0.0f;
    float color_saturation = 0.0f;
    float color_brightness = 0.0f;

    // Unmix
    std::int32_t unmix_method = 0;  // colour difference, unmix
    float unmix_veil = 0.7f;
    float unmix_solid = 0.66f;
    float unmix_detail = 1.0f;
    float unmix_denoise = 1.0f;
    float unmix_folds = 1.0f;
    float unmix_spill = 1.0f;
    std::int32_t unmix_encoding = 0;  // as stored, sRGB, logarithmic
    float unmix_opacity = 0.5f;       // of the next stroke over what is see-through

    // Film
    float film_transparency = 100.0f;
    Color film_correction{0.2f, 0.0f, 0.0f};
    float film_strength = 0.0f;
    Size film_shrink{2.0, 2.0};
    float film_brights = 200.0f;
    float film_darks = 5.0f;

    // Output
    std::int32_t matte_scale = 0;  // knee, linear
    std::int32_t merge = 0;        // multiply, add
    std::int32_t highlights = 0;   // clip, keep

    bool operator==(const KnobStorage&) const = default;

    bool unmixes() const { return unmix_method == 1; }
    bool linear_matte() const { return matte_scale == 1 || unmixes(); }
    bool adds() const { return merge == 1 || unmixes(); }
    bool keeps_highlights() const { return highlights == 1 && !unmixes(); }
    bool shows_subject() const { return overlay_mode == 2; }

    std::int32_t active_tool = 0;    // the toolbar's: number of the tool in hand
    std::int32_t screen_choice = 0;  // what "find_screen" looks for: auto, green, blue, red

    // No knob shows these. Where the encoding of colours leaves the straight line, per channel.
    ColorAlpha encodePivot{0.5f, 0.5f, 0.5f, 0.5f};
};
