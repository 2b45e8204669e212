// veloxa plate: writes a procedural plate set whose true matte, colour and composite are known.
#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Commands.h"
#include "Progress.h"
#include "Signals.h"
#include "Usage.h"
#include "plates/Set.h"
#include "shot/Errors.h"
#include "shot/Numbers.h"
#include "shot/files/ImageFile.h"
#include "shot/frames/FramePattern.h"

namespace veloxa {

namespace {

constexpr int kLargest = 32768;                                          // pixels to a side
const std::vector<std::string> kVeilColours{"warm", "neutral", "dark"};  // VeilTone, from kWarm on

// What --vary draws, each unless it is given by itself.
struct VariationOptions {
    bool vary = false;
    bool details = false;
    std::optional<std::string> veil_colour;
    std::optional<float> veil_density, spill, grain, defocus, hair, speed;
    std::optional<int> marks;
    float flicker = 0.0f;
    std::string camera = "locked";
};

struct PlateOptions {
    std::string folder;
    std::string size = "1920x1080";
    std::string screen = "green";
    std::string frames;
    plate::Options scene;
    VariationOptions variation;
    bool overwrite = false;
};

// WxH.
void read_size(const std::string& text, plate::Options& scene) {
    std::string_view rest = text;
    const bool good = take(rest, scene.width) && (take(rest, 'x') || take(rest, 'X')) &&
                      take(rest, scene.height) && rest.empty();
    const auto fits = [](int n) { return n >= 1 && n <= kLargest; };
    if (good && fits(scene.width) && fits(scene.height)) return;
    throw UsageError("--size " + text + ": expected WxH, each from 1 to " + std::to_string(kLargest));
}

plate::Variation variation_of(const VariationOptions& options, std::uint64_t seed) {
    plate::Variation v = options.vary ? plate::varied(seed) : plate::Variation{};
    if (options.veil_colour) {
        const auto at = std::ranges::find(kVeilColours, *options.veil_colour) - kVeilColours.begin();
        v.veil_tone = static_cast<plate::VeilTone>(at + 1);
    }
    v.veil_density = options.veil_density.value_or(v.veil_density);
    v.spill = options.spill.value_or(v.spill);
    v.grain = options.grain.value_or(v.grain);
    v.defocus = options.defocus.value_or(v.defocus);
    v.marks = options.marks.value_or(v.marks);
    v.hair = options.hair.value_or(v.hair);
    v.speed = options.speed.value_or(v.speed);
    v.details = v.details || options.details;
    v.flicker = options.flicker;
    v.moving = options.camera == "moving";
    return v;
}

int make_plates(PlateOptions options) {
    read_size(options.size, options.scene);
    options.scene.vary = variation_of(options.variation, options.scene.seed);
    options.scene.screen = options.screen == "blue" ? plate::Screen::kBlue : plate::Screen::kGreen;
    const bool sequence = !options.frames.empty();
    const FrameRange range = sequence ? parse_frames(options.frames) : FrameRange{};

    std::error_code error;
    std::filesystem::create_directories(options.folder, error);
    if (error) throw Error(options.folder, error.message());
    const auto path_of = [&](std::size_t picture, int frame) {
        const std::string name = plate::kPictureNames[picture];
        const FramePattern pattern(sequence ? name + ".%04d.exr" : name + ".exr");
        return (std::filesystem::path(options.folder) / pattern.at(frame)).string();
    };
    const WriteOptions how{.depth = Depth::HALF, .overwrite = options.overwrite, .abort = &interrupt_flag()};
    for (int n = 0; n < range.count(); ++n) {
        for (std::size_t i = 0; i < plate::kPictureNames.size(); ++i)
            check_writable(path_of(i, range.at(n)), how);
    }
    catch_interrupts();
    Progress progress(!sequence);
    for (int n = 0; n < range.count(); ++n) {
        const plate::Set set = plate::render_set(options.scene, range.at(n), 0, how.abort);
        give_up_if_raised(how.abort);
        for (std::size_t i = 0; i < set.size(); ++i) write_image(path_of(i, range.at(n)), set[i], how);
        progress.update(n + 1, range.count());
    }
    return kExitOk;
}

void add_variation_options(CLI::App& command, VariationOptions& options) {
    const std::string group = "Variations";
    const auto number = [&](const char* name, auto& value, const char* meaning, double low, double high) {
        command.add_option(name, value, meaning)->type_name("X")->check(CLI::Range(low, high))->group(group);
    };
    command.add_flag("--vary", options.vary, "Draw all of the following up to --details by the seed")
        ->group(group);
    command.add_option("--veil-colour", options.veil_colour, "Of the veil: warm, neutral or dark")
        ->check(OneOf(kVeilColours))
        ->group(group);
    number("--veil-density", options.veil_density, "The veil's largest alpha; 0.62 without it", 0.0, 1.0);
    number("--spill", options.spill, "Share of the screen's colour added at rims, and less inside", 0.0, 1.0);
    number("--grain", options.grain, "Times as much grain", 0.0, 20.0);
    number("--defocus", options.defocus, "Blur of the whole subject: radius in pixels at 1080 lines", 0.0,
           50.0);
    command.add_option("--marks", options.marks, "So many crosses, tapes, seams and odd folds on the screen")
        ->type_name("N")
        ->check(CLI::Range(0, 1000))
        ->group(group);
    number("--hair", options.hair, "Times as many loose hairs, over a mass that thins", 1.0, 20.0);
    number("--speed", options.speed, "Times as fast an arm", 0.0, 8.0);
    command.add_flag("--details", options.details, "A brooch and a stripe of a muted screen hue")
        ->group(group);
    number("--flicker", options.flicker, "How far a frame's light strays, as a share", 0.0, 0.9);
    command.add_option("--camera", options.camera, "locked, or moving: it pans slowly over the set")
        ->check(OneOf({"locked", "moving"}))
        ->capture_default_str()
        ->group(group);
}

}  // namespace

void add_plate_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("plate", "Make a test plate set whose true matte is known.");
    command->footer(
        "Writes half-float OpenEXR files, with --frames as fg.0001.exr and so on:\n"
        "  fg          a figure before an uneven screen, with spill, contact shadow and grain\n"
        "  cp          the same set without the figure and its shadow, with less grain\n"
        "  bg          a background to put it over\n"
        "  gm          garbage matte, alpha only: 1 over the strip with the light stand, 0 everywhere in a\n"
        "              frame narrower than 8:5\n"
        "  alpha_true  the figure's coverage, alpha only; the shadow is no part of it\n"
        "  fgcol_true  the figure's colour without spill, premultiplied by alpha_true\n"
        "  comp_true   fgcol_true + (1 - alpha_true) * bg * shadow\n"
        "  regions     alpha only: 0 backing, 1 core (alpha 1), else what made the coverage partial: 2 "
        "edge,\n"
        "              3 hair, 4 motion, 5 veil or glass\n"
        "One seed gives one layout, the same bytes each time; another seed another figure, cloth and light. "
        "A frame moves the figure, its hair and the veil. The clean plate keeps the mean light, and pans "
        "with a "
        "moving camera.");
    auto options = std::make_shared<PlateOptions>();
    command->add_option("-o,--output", options->folder, "Folder to write to; made if it is missing")
        ->type_name("DIR")
        ->required();
    command->add_option("--size", options->size, "Width and height in pixels")
        ->type_name("WxH")
        ->capture_default_str();
    command->add_option("--seed", options->scene.seed, "Which plate")->type_name("N")->capture_default_str();
    command->add_option("--screen", options->screen, "Colour of the screen")
        ->type_name("COLOUR")
        ->check(OneOf({"green", "blue"}))
        ->capture_default_str();
    command->add_option("--frames", options->frames, "Frames of a sequence")->type_name("A-B");
    add_variation_options(*command, options->variation);
    command->add_flag("--overwrite", options->overwrite, "Replace files that exist");
    command->callback([options, &run] { run = [options] { return make_plates(*options); }; });
}

}  // namespace veloxa
