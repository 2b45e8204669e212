// veloxa cleanplate: a clean plate from the clear backing of a locked-off shot.
#include <cstdio>
#include <filesystem>
#include <memory>

#include "AtomicFile.h"
#include "CleanPlate.h"
#include "Commands.h"
#include "Errors.h"
#include "Interrupt.h"
#include "NodeOptions.h"
#include "Pick.h"
#include "ScreenChoice.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

struct Options {
    std::string foreground;
    std::string output;
    std::string frames;
    KnobSettings settings;
    ScreenOptions screen;
    std::string depth;
    int threads = 0;
    int memory = 1024;
    bool overwrite = false;
    bool quiet = false;
};

FrameRange frames_of(const Options& options, const FramePattern& name) {
    if (options.frames.empty() && name.has_frame()) {
        throw UsageError(name.name() + ": a frame pattern needs --frames A-B");
    }
    if (!options.frames.empty() && !name.has_frame()) {
        throw UsageError("--frames: " + name.name() + " has no frame pattern such as %04d or ####");
    }
    return options.frames.empty() ? FrameRange{} : parse_frames(options.frames);
}

void check_output(const Options& options, const FramePattern& name, const FrameRange& frames,
                  const WriteOptions& write) {
    AtomicFile::check(options.output, write.overwrite);
    check_writable(options.output, write);
    for (int n = 0; n < frames.count(); ++n) {
        std::error_code missing;
        if (std::filesystem::equivalent(options.output, name.at(frames.at(n)), missing)) {
            throw UsageError(options.output + ": is an input too");
        }
    }
}

void choose_screen_color(const Options& options, CleanPlateMaker& maker) {
    KnobPanel& panel = maker.node().panel();
    const auto& [pick, screen] = options.screen;
    if (!pick.empty()) {
        set_screen_color(panel, mean_color(maker.first_image(), parse_box("--pick", pick)));
    } else if (!screen.empty() || !has_screen_color(panel, options.settings.sets)) {
        find_screen_color(maker.node(), maker.first_image(), maker.first_file(), screen, options.quiet);
    }
}

void print(const CleanPlateReport& report, const FramePattern& name) {
    std::printf("frames       %d\n", report.frames);
    std::printf("region       %s\n", report.region.c_str());
    std::printf("truly seen   %.2f%% of the pixels; the rest is interpolated\n", 100.0 * report.seen);
    if (report.compared == 0) {
        std::printf("shift        not known: no two frames share enough detail of the backing\n");
    } else {
        std::printf("shift        %.2f pixels at most (%s), measured on %d frames; the bound is %.2f\n",
                    report.largest.length(), name.at(report.largest_frame).c_str(), report.compared,
                    kShiftBound);
    }
    if (std::fflush(stdout) != 0) throw Error("standard output could not be written");
}

int make_clean_plate(const Options& options) {
    const FramePattern name(options.foreground);
    const FrameRange frames = frames_of(options, name);
    if (!options.screen.pick.empty()) parse_box("--pick", options.screen.pick);
    const WriteOptions write{depth_named(options.depth), options.overwrite, &interrupt_flag()};
    check_output(options, name, frames, write);
    catch_interrupts();

    const auto budget = static_cast<std::size_t>(options.memory) << 20;
    CleanPlateMaker maker(name, frames, {options.threads, budget, options.quiet, write.abort});
    maker.node().apply(options.settings);
    choose_screen_color(options, maker);
    const Image plate = maker.make();
    const std::string left_out = write_image(options.output, plate, write);
    if (!left_out.empty()) report(options.output + ": " + left_out_warning(left_out));
    print(maker.report(), name);
    return maker.report().failed == 0 ? kExitOk : kExitFailure;
}

constexpr const char* kFooter =
    "Each pixel becomes the median of its values in the frames that show clear backing there, by the region "
    "that the node's knobs make: Screen Correct widens or narrows it. What no frame shows is interpolated "
    "from "
    "around it. The camera must be locked off; a shift of the backing above half a pixel is told.\n"
    "The median is exact. Where a sequence's samples would take more than --memory, the picture is worked on "
    "in strips of rows, and the frames are read once a strip.\n"
    "Exit status: 0, or 1 when a frame could not be used (the others still are) or nothing could be made.";

}  // namespace

CLI::App* add_cleanplate_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("cleanplate", "Make a clean plate from a locked-off sequence.");
    command->footer(kFooter);
    auto options = std::make_shared<Options>();
    command->add_option("--fg", options->foreground, "Foreground against the backing")
        ->required()
        ->type_name("FILE");
    command->add_option("-o,--output", options->output, "Clean plate; its extension chooses the format")
        ->required()
        ->type_name("FILE");
    command->add_option("--frames", options->frames, "Frames A to B, every Nth")->type_name("A-B[xN]");
    add_knob_options(*command, options->settings);
    add_screen_options(*command, options->screen, "the first frame");
    command
        ->add_option("--depth", options->depth,
                     "Samples: half in OpenEXR, float in RLA, else up to uint16, without it")
        ->check(CLI::IsMember({"half", "float", "uint8", "uint16"}));
    command->add_option("--memory", options->memory, "MiB that samples may take")
        ->type_name("N")
        ->check(CLI::Range(1, 1 << 20))
        ->capture_default_str();
    command->add_option("--threads", options->threads, "Threads to render with; all processors without it")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    command->add_flag("--overwrite", options->overwrite, "Replace a file that exists");
    command->add_flag("--quiet", options->quiet, "Show no progress");
    command->callback([options, &run] { run = [options] { return make_clean_plate(*options); }; });
    return command;
}

}  // namespace veloxa
