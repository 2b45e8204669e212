// veloxa cleanplate: a clean plate from the clear backing of a locked-off shot.
#include <iomanip>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Commands.h"
#include "DryRun.h"
#include "Options.h"
#include "Progress.h"
#include "Signals.h"
#include "Terminal.h"
#include "shot/Errors.h"
#include "shot/cleanplate/CleanPlate.h"
#include "shot/files/ImageFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

struct Options {
    std::string foreground;
    std::string output;
    std::string frames;
    ColourOptions colour;
    KnobSettings settings;
    ScreenOptions screen;
    FormatOptions format;
    int threads = 0;
    int memory = 1024;
    bool overwrite = false;
    bool json = false;
    bool quiet = false;
    bool dry_run = false;
};

std::string table_of(const CleanPlateReport& report, const PictureName& name) {
    std::ostringstream table;
    table << std::fixed << std::setprecision(2);
    table << "frames       " << report.frames << "\nregion       " << report.region << "\ntruly seen   "
          << 100.0 * report.seen << "% of the pixels; the rest is interpolated\nshift        ";
    if (report.compared == 0) {
        table << "not known: no two frames share enough detail of the backing\n";
    } else {
        table << report.largest.length() << " pixels at most (" << name.at(report.largest_frame)
              << "), measured on " << report.compared << " frames; the bound is " << kShiftBound << '\n';
    }
    return table.str();
}

// {"frames", "failed", "region", "seen", "shift": {"pixels", "file", "compared", "bound"}}; seen is a share,
// the shift null where no two frames could be compared.
std::string json_of(const CleanPlateReport& report, const PictureName& name) {
    nlohmann::ordered_json all{{"frames", report.frames},
                               {"failed", report.failed},
                               {"region", report.region},
                               {"seen", report.seen}};
    all["shift"] = nullptr;
    if (report.compared > 0) {
        all["shift"] = {{"pixels", report.largest.length()},
                        {"file", name.at(report.largest_frame)},
                        {"compared", report.compared},
                        {"bound", kShiftBound}};
    }
    return all.dump(2) + "\n";
}

int dry_run(const Options& options, const PictureName& name, const FrameRange& frames,
            const WriteOptions& write) {
    Node node;
    node.apply(options.settings, caller_for(false));
    Preview preview(frames);
    const NamedInput input{"fg", name};
    preview.read({&input, 1}, Fit::kRefuse,
                 ShotColour(options.colour, std::array{name.choice().space}, caller_for(true)));
    preview.read("script", options.settings.script);
    preview.set(node, options.screen, has_screen_color(node.panel(), options.settings.sets));
    preview.make(options.output, write);
    return show(preview);
}

int make_clean_plate(const Options& options) {
    const PictureName name(options.foreground);
    if (name.is_stream()) {
        throw UsageError("standard input is read once, and cleanplate reads frames twice; give it files");
    }
    const FrameRange frames = frames_of(options.frames, {&name, 1});
    if (!options.screen.pick.empty()) parse_box("--pick", options.screen.pick);
    for (int n = 0; n < frames.count(); ++n) refuse_input(options.output, {&name, 1}, frames.at(n));
    WriteOptions write{.overwrite = options.overwrite, .abort = &interrupt_flag()};
    options.format.apply_to(write);
    if (options.dry_run) return dry_run(options, name, frames, write);
    check_writable(options.output, write);
    catch_interrupts();

    Progress progress(options.quiet);
    Caller caller = caller_for(options.quiet);
    caller.progress = [&](double done, int all) { progress.update(done, all); };
    CleanPlateMaker maker(name, frames,
                          {options.threads, static_cast<std::size_t>(options.memory) << 20, options.colour},
                          caller);
    KnobPanel& panel = maker.node().panel();
    maker.node().apply(options.settings, caller);
    choose_screen_color(
        maker.node(), options.screen, has_screen_color(panel, options.settings.sets),
        [&] { return maker.first(); }, caller);
    const Image plate = maker.make();
    const std::string left_out = write_image(options.output, plate, write);
    if (!left_out.empty()) report(left_out_warning(options.output, left_out));
    print(options.json ? json_of(maker.report(), name) : table_of(maker.report(), name));
    return maker.report().failed == 0 ? kExitOk : kExitFailure;
}

constexpr const char* kFooter =
    "Each pixel becomes the median of its values in the frames that show clear backing there, by the region "
    "that the node's knobs make: Screen Correct widens or narrows it. What no frame shows is interpolated "
    "from around it. The camera must be locked off; a shift of the backing above half a pixel is told.\n"
    "Knobs are set in this order: --script, --set, --pick or --screen.\n"
    "The median is exact. Where a sequence's samples would take more than --memory, the picture is worked on "
    "in strips of rows, and the frames are read once a strip.\n"
    "Exit status: 0, or 1 when a frame could not be used (the others still are) or nothing could be made.";

}  // namespace

void add_cleanplate_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("cleanplate", "Make a clean plate from a locked-off sequence.");
    command->footer(kFooter);
    auto options = std::make_shared<Options>();
    command->add_option("--fg", options->foreground, "Foreground against the backing")
        ->required()
        ->type_name("FILE");
    command->add_option("-o,--output", options->output, "Clean plate; its extension chooses the format")
        ->required()
        ->type_name("FILE");
    add_colour_options(*command, options->colour);
    add_frames_option(*command, options->frames);
    add_knob_options(*command, options->settings);
    add_screen_options(*command, options->screen, "the first frame");
    add_format_options(*command, options->format);
    command->add_option("--memory", options->memory, "MiB that samples may take")
        ->type_name("N")
        ->check(CLI::Range(1, 1 << 20))
        ->capture_default_str();
    add_threads_option(*command, options->threads);
    command->add_flag("--overwrite", options->overwrite, "Replace a file that exists");
    command->add_flag("--json", options->json, "The report as JSON");
    command->add_flag("--quiet", options->quiet, "Show no progress");
    add_dry_run_option(*command, options->dry_run);
    command->callback([options, &run] { run = [options] { return make_clean_plate(*options); }; });
}

}  // namespace veloxa
