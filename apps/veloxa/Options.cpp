#include "Options.h"

#include <string_view>

#include "Usage.h"
#include "shot/Errors.h"
#include "shot/Numbers.h"
#include "shot/setup/ScreenChoice.h"

namespace veloxa {

namespace {

constexpr int kLargestTile = 1 << 14;

}  // namespace

void add_knob_options(CLI::App& command, KnobSettings& settings) {
    command.add_option("--script", settings.script, "Set knobs from a script")->type_name("FILE");
    command.add_option("--set", settings.sets, "Set a knob: numbers by commas, menu items by name")
        ->type_name("KNOB=VALUE")
        ->allow_extra_args(false);
}

void add_screen_options(CLI::App& command, ScreenOptions& options, const std::string& image) {
    CLI::Option* const pick =
        command.add_option("--pick", options.pick, "Set screen_color to the mean of a box of " + image)
            ->type_name("X,Y,R,T");
    command
        .add_option("--screen", options.screen,
                    "Find the backing in " + image +
                        ": of whatever colour (auto, as when nothing sets screen_color) or of this one")
        ->check(OneOf(kScreenChoices))
        ->excludes(pick);
}

void add_colour_options(CLI::App& command, ColourOptions& options) {
    command
        .add_option(
            "--in-space", options.in_space,
            "Colour space of the colour inputs, but for those with #space=T; they are keyed in scene linear "
            "light")
        ->type_name("SPACE");
    command
        .add_option(
            "--out-space", options.out_space,
            "Colour space to convert the result to; without --in-space the inputs' are as their files say")
        ->type_name("SPACE");
}

void add_frames_option(CLI::App& command, std::string& frames) {
    command.add_option("--frames", frames, "Frames A to B, every Nth")->type_name("A-B[xN]");
}

void add_threads_option(CLI::App& command, int& threads) {
    command.add_option("--threads", threads, "Threads to render with; all processors without it")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
}

void FormatOptions::apply_to(WriteOptions& how) const {
    set_depth(how, depth);
    how.compression = compression;
    how.quality = quality;
    if (tiles.empty()) return;
    std::string_view rest = tiles;
    const bool good = take(rest, how.tile_width) && take(rest, 'x') && take(rest, how.tile_height);
    const auto fits = [](int n) { return n >= 1 && n <= kLargestTile; };
    if (!good || !rest.empty() || !fits(how.tile_width) || !fits(how.tile_height)) {
        throw UsageError("--tiles " + tiles + ": expected WxH, as in 64x64, each up to " +
                         std::to_string(kLargestTile));
    }
}

void add_format_options(CLI::App& command, FormatOptions& options) {
    command
        .add_option(
            "--depth", options.depth,
            "Samples: half in OpenEXR, float in RLA, else up to uint16, without it; uint10 and uint12 "
            "in DPX and TIFF")
        ->check(OneOf({"half", "float", "uint8", "uint10", "uint12", "uint16"}));
    command
        .add_option(
            "--compression", options.compression,
            "As OpenEXR, TIFF, TGA, PNG and WebP have it, as piz, dwaa:45, zip:9, none; without it the "
            "foreground's where the format has that")
        ->type_name("NAME[:LEVEL]");
    command.add_option("--quality", options.quality, "Of JPEG, WebP and HEIF, 1 to 100")
        ->type_name("N")
        ->check(CLI::Range(1, 100));
    command.add_option("--tiles", options.tiles, "Tiles instead of rows, in OpenEXR and TIFF")
        ->type_name("WxH");
}

void add_setup_options(CLI::App& command, SetupOptions& options) {
    constexpr std::array<const char*, kInputCount> kMeanings{
        "Foreground against the backing", "Clean plate: the shot without the subject",
        "Background; black without it", "Garbage matte: its alpha, else its first channel",
        "Holdout matte: its alpha, else its first channel"};
    for (std::size_t n = 0; n < kInputCount; ++n) {
        command.add_option(std::string("--") + kInputNames[n], options.inputs[n], kMeanings[n])
            ->type_name("FILE")
            ->required(n == kFg);
    }
    command
        .add_option("--fit", options.fit,
                    "Inputs of another size than the foreground: resize scales them, crop centres them, none "
                    "leaves them at the bottom left; edge pixels repeat. Without it they are errors")
        ->check(OneOf({"resize", "crop", "none"}));
    add_colour_options(command, options.colour);
    add_frames_option(command, options.frames);
    add_knob_options(command, options.settings);
    add_screen_options(command, options.screen, "the first foreground that can be read");
    command.add_flag(
        "--auto", options.automatic,
        "Set the node up from the first foreground that can be read, before any stroke but one of the "
        "screen tool at their head; knobs that --script or --set name stay as they are");
    command
        .add_option(
            "--stroke", options.strokes,
            "Use a sampling tool on a box, as add_overlay=10,20,30,40, or on several with a + between them; "
            "of a sequence's frame N with @N behind the tool, else of the first that can be read")
        ->type_name("TOOL=X,Y,R,T")
        ->allow_extra_args(false);
}

}  // namespace veloxa
