// veloxa key: keys a still or a sequence.
#include <OpenImageIO/imageio.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>

#include "Commands.h"
#include "DryRun.h"
#include "KeyReport.h"
#include "Options.h"
#include "Progress.h"
#include "Signals.h"
#include "Terminal.h"
#include "Usage.h"
#include "Version.h"
#include "ZoImage/Iop.h"
#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
#include "shot/sequence/KeyPipeline.h"
#include "shot/setup/KeySetup.h"
#include "shot/setup/ShotModel.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

struct Options {
    SetupOptions setup;
    std::vector<std::string> outputs;
    std::string save_script;
    std::string shot;
    std::string shot_frames;
    std::string stage;
    FormatOptions format;
    std::string keep;
    int threads = 0;
    bool no_provenance = false;
    bool stats = false;
    bool json = false;
    bool dry_run = false;
    bool resume = false;
    bool overwrite = false;
    bool quiet = false;
};

KeyPlan plan_for(const Options& options, const FrameRange& frames) {
    KeyPlan plan;
    plan.frames = frames;
    plan.outputs = parse_outputs(options.outputs);
    plan.write.overwrite = options.overwrite || options.resume;
    options.format.apply_to(plan.write);
    plan.write.layers = !options.keep.empty();
    if (!options.no_provenance) plan.program = version_text(false);
    plan.resume = options.resume;
    plan.threads = options.threads;
    for (const KeyOutput& output : plan.outputs) {
        const FramePattern& file = output.file;
        if (file.is_stream()) refuse_terminal(STDOUT_FILENO, "-o -: standard output");
        if (file.is_stream() && options.resume) {
            throw UsageError("--resume: standard output holds nothing that could be resumed");
        }
        if (options.setup.frames.empty() && file.has_frame() && !frames.open) {
            throw UsageError(file.name() + ": a frame pattern needs --frames A-B");
        }
        if (frames.count() > 1 && !file.has_frame() && !file.is_stream()) {
            throw UsageError(file.name() + ": several frames need a frame pattern such as %04d or ####");
        }
        if (!options.stage.empty() && output.picture != Picture::kNode) {
            throw UsageError("--stage writes its rows alone, to -o FILE; comp, matte and cut are the node's");
        }
    }
    return plan;
}

// What would read the input more than once, or not all of it.
void refuse_twice(const Options& options) {
    refuse_terminal(STDIN_FILENO, "standard input");
    if (!options.shot_frames.empty()) {
        throw UsageError(
            "--shot-frames: standard input is read once, so nothing can be measured on it first");
    }
    if (options.resume) throw UsageError("--resume: standard input cannot be resumed");
}

// What a stroke left undone; that it did as it was told needs no line.
void tell_of(const std::vector<ToolReport>& strokes, const Caller& caller) {
    for (const ToolReport& stroke : strokes) {
        for (const std::string& note : stroke.notes) caller.tell(stroke.tool + ": " + note);
        const int left = stroke.unsatisfied + stroke.unusable;
        if (left == 0) continue;
        caller.tell(stroke.tool + ": " + std::to_string(left) + " of " +
                    std::to_string(left + stroke.satisfied) + " samples could not be satisfied");
    }
}

// Frames of a sequence are keyed by what is measured over all of it, so that the matte does not breathe.
void settle_shot(const Options& options, KeySetup& setup, const Caller& caller) {
    if (!options.shot.empty()) {
        setup.use_shot(options.shot);
        if (!keys_by_shot(setup.node())) caller.warn(options.shot + ": unmix_method unmix alone reads it");
        return;
    }
    if (!keys_by_shot(setup.node())) return;
    const std::string& script = options.setup.settings.script;
    const bool asked = !options.shot_frames.empty();
    std::error_code missing;
    if (!asked && !script.empty() && std::filesystem::exists(shot_beside(script), missing)) {
        setup.use_shot(shot_beside(script));
        caller.tell(shot_beside(script) + ": the shot is keyed by it");
        return;
    }
    if (setup.loader().has_stream()) {
        return caller.warn(
            "standard input is read once, so the shot is not measured and each frame is keyed by itself; "
            "--shot FILE keys them alike");
    }
    const FrameRange range = asked ? parse_frames(options.shot_frames) : setup.frames();
    if (!asked && range.count() < 2) return;
    const auto measured = setup.measure_shot(range, kShotFrames);
    if (measured.empty()) return caller.warn("no frame could be measured, so each is keyed by itself");
    caller.tell("the shot is measured on " + std::to_string(measured.size()) + " frames of " +
                std::to_string(range.first) + "-" + std::to_string(range.last));
}

// Whoever gives no background may think that he gets a cut.
void tell_of_lost_mattes(const Options& options, const KeyPlan& plan, const Node& node,
                         const Caller& caller) {
    if (!options.setup.inputs[kBg].empty() || !options.stage.empty()) return;
    const std::string own = node.panel().get("output_mode").text();
    for (const KeyOutput& output : plan.outputs) {
        WriteOptions how = plan.write;
        how.alpha = alpha_of(mode_of(output.picture, own));
        if (output.file.is_stream()) continue;
        const std::string file = output.file.at(plan.frames.first);
        if (output.picture == Picture::kMatte || how.alpha != Alpha::kOpaque || keeps_alpha(file, how))
            continue;
        caller.tell(file + ": a composite over black, without its matte; -o cut=FILE keeps that");
    }
}

int dry_run(const Options& options, const KeyPlan& plan, KeySetup& setup) {
    Preview preview = preview_of(setup, options.setup);
    preview.read("shot", options.shot);
    for (const KeyOutput& output : plan.outputs)
        preview.make(output.file, plan.how_to_write(output), inputs_of(setup.names()));
    preview.make(options.save_script, plan.write.overwrite);
    return show(preview);
}

int key(const Options& options) {
    Caller caller = caller_for(options.quiet);
    KeySetup setup(options.setup, caller);
    if (!options.keep.empty()) setup.loader().keep_layers();
    const KeyPlan plan = plan_for(options, setup.frames());
    if (setup.loader().has_stream()) refuse_twice(options);
    survive_closed_pipes();
    catch_interrupts();
    OIIO::attribute("threads", options.threads);
    OIIO::attribute("exr_threads", options.threads);

    Node& node = setup.node();
    Iop& root = options.stage.empty() ? node.image() : node.member(options.stage);
    if (options.dry_run) return dry_run(options, plan, setup);
    check_outputs(plan, setup.names());
    tell_of_lost_mattes(options, plan, node, caller);
    const std::string beside = options.save_script.empty() ? "" : shot_beside(options.save_script);
    if (!beside.empty() && beside == options.save_script) {
        throw UsageError("--save-script " + beside + ": the extension .shot is that of the shot beside it");
    }

    std::chrono::nanoseconds read_ahead{0};
    {
        const Stopwatch watch(read_ahead);
        setup.prepare();
    }
    tell_of(setup.strokes(), caller);
    settle_shot(options, setup, caller);
    if (!options.save_script.empty()) {
        const bool measured = has_shot(node);
        if (measured) AtomicFile::check(beside, plan.write.overwrite);
        setup.save_script(options.save_script, plan.write.overwrite);
        if (measured) save_shot(node, beside, plan.write.overwrite);
    }

    bool good = false;
    KeyStats stats;
    {
        Progress progress(options.quiet);
        caller.progress = [&](double done, int all) { progress.update(done, all); };
        KeyPipeline pipeline(plan, setup.loader(), node, root, setup.inputs(), caller);
        if (options.stats) pipeline.measure_time();
        good = pipeline.run();
        stats = pipeline.stats();
        stats.read += read_ahead;
    }
    if (options.stats) std::fputs((options.json ? stats_json(stats) : stats_table(stats)).c_str(), stderr);
    return good ? kExitOk : kExitFailure;
}

constexpr const char* kFooter =
    "Paths with a frame number, as %04d or ####, need --frames; inputs without one are the same in every "
    "frame.\n"
    "FILE#part=P,layer=L,view=V,channel=C chooses what is read of an input, as plate.####.exr#layer=beauty; "
    "stands.exr#channel=R,invert makes that channel, inverted, the matte.\n"
    "One input and one output may be -, a stream of frames on standard input and output: NUT with raw video, "
    "as `ffmpeg -i in.mov -f nut -c:v rawvideo -pix_fmt rgba64le -` writes and `ffmpeg -f nut -i - out.mov` "
    "reads it. Its frames are numbered from 1, or from A with --frames A-B, which takes no more than those.\n"
    "Boxes and rows count from the bottom left pixel of the foreground's display window.\n"
    "Exit status: 0 when every frame was written, 1 when not, 2 for bad usage, 130 when interrupted.";

void add_rendering(CLI::App& command, Options& options) {
    command
        .add_option(
            "-o,--output", options.outputs,
            "Result; its extension chooses the format. comp=FILE writes the composite, matte=FILE the "
            "matte as one channel, cut=FILE the premultiplied subject, several from one run")
        ->required()
        ->type_name("[PICTURE=]FILE")
        ->allow_extra_args(false);
    command
        .add_option("--save-script", options.save_script,
                    "Save the knobs that differ from their defaults, and what was measured of the "
                    "shot beside them, as .shot")
        ->type_name("FILE");
    CLI::Option* const shot =
        command.add_option("--shot", options.shot, "What veloxa analyse measured of the shot")
            ->type_name("FILE");
    command
        .add_option("--shot-frames", options.shot_frames,
                    "Frames that the shot is measured on where unmix_method is unmix; without it those of "
                    "--frames, where they are several and no FILE.shot is beside --script FILE")
        ->type_name("A-B[xN]")
        ->excludes(shot);
    add_threads_option(command, options.threads);
    command
        .add_option("--stage", options.stage,
                    "Write an internal operator's rows instead, on the working scale")
        ->type_name("MEMBER");
    CLI::Option* const stats =
        command.add_flag("--stats", options.stats, "Print rows and time per operator on standard error");
    command.add_flag("--json", options.json, "Print what --stats prints as JSON")->needs(stats);
    add_format_options(command, options.format);
    command.add_flag("--no-provenance", options.no_provenance,
                     "Leave program, inputs and settings out of the metadata");
    command
        .add_option("--keep", options.keep,
                    "Write what else the foreground's file holds beside the result, in OpenEXR: other "
                    "channels, layers and parts, as they are")
        ->check(OneOf({"layers"}));
    command.add_flag("--resume", options.resume, "Leave out frames whose output is there and whole");
    command.add_flag("--overwrite", options.overwrite, "Replace outputs that exist");
    command.add_flag("--quiet", options.quiet, "Show no progress");
    add_dry_run_option(command, options.dry_run);
}

}  // namespace

void add_key_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("key", "Key a still or an image sequence.");
    command->footer(std::string(kSetupOrder) + "\n" + kFooter);
    auto options = std::make_shared<Options>();
    add_setup_options(*command, options->setup);
    add_rendering(*command, *options);
    command->callback([options, &run] { run = [options] { return key(*options); }; });
}

}  // namespace veloxa
