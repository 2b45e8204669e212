// veloxa key: keys a still or a sequence.
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>

#include "Commands.h"
#include "DryRun.h"
#include "FrameLines.h"
#include "KeyOptions.h"
#include "KeyReport.h"
#include "Progress.h"
#include "Signals.h"
#include "Terminal.h"
#include "ZoImage/Iop.h"
#include "shot/Errors.h"
#include "shot/farm/Leftovers.h"
#include "shot/files/AtomicFile.h"
#include "shot/files/Formats.h"
#include "shot/sequence/KeyPipeline.h"
#include "shot/sequence/KeyResume.h"
#include "shot/setup/KeySetup.h"
#include "shot/setup/ShotModel.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// What would read the input more than once, or not all of it.
void refuse_twice(const KeyOptions& options) {
    refuse_terminal(STDIN_FILENO, "standard input");
    if (!options.shot_frames.empty()) {
        throw UsageError(
            "--shot-frames: standard input is read once, so nothing can be measured on it first");
    }
    if (options.resume) throw UsageError("--resume: standard input cannot be resumed");
    if (!options.chunk.empty()) throw UsageError("--chunk: standard input is one stream and has no chunks");
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
void settle_shot(const KeyOptions& options, KeySetup& setup, const Caller& caller) {
    const ShotSource source = shot_source_of(options, setup.frames());
    if (!options.shot.empty()) {
        setup.use_shot(options.shot);
        if (!keys_by_shot(setup.node())) caller.warn(options.shot + ": unmix_method unmix alone reads it");
        return;
    }
    if (!keys_by_shot(setup.node())) return;
    if (!source.file.empty()) {
        setup.use_shot(source.file);
        caller.tell(source.file + ": the shot is keyed by it");
        return;
    }
    if (setup.loader().has_stream()) {
        return caller.warn(
            "standard input is read once, so the shot is not measured and each frame is keyed by itself; "
            "--shot FILE keys them alike");
    }
    if (!source.measured) return;
    const FrameRange& range = *source.measured;
    const auto measured = setup.measure_shot(range, kShotFrames);
    if (measured.empty()) return caller.warn("no frame could be measured, so each is keyed by itself");
    caller.tell("the shot is measured on " + std::to_string(measured.size()) + " frames of " +
                std::to_string(range.first) + "-" + std::to_string(range.last));
}

// Whoever gives no background may think that he gets a cut.
void tell_of_lost_mattes(const KeyOptions& options, const KeyPlan& plan, const Node& node,
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

int dry_run(const KeyOptions& options, const KeyPlan& plan, KeySetup& setup) {
    Preview preview = preview_of(setup, options.setup, plan.frames);
    preview.read("shot", options.shot);
    for (const KeyOutput& output : plan.outputs)
        preview.make(output.file, plan.how_to_write(output), inputs_of(setup.names()));
    preview.make(options.save_script, plan.write.overwrite);
    return show(preview);
}

// Sets the node up and measures the shot. Adds the time that the first of it takes to `read`.
void prepare(const KeyOptions& options, KeySetup& setup, const Caller& caller,
             std::chrono::nanoseconds& read) {
    const std::string& script = options.save_script;
    const std::string beside = script.empty() ? "" : shot_beside(script);
    if (!beside.empty() && beside == script) {
        throw UsageError("--save-script " + beside + ": the extension .shot is that of the shot beside it");
    }
    {
        const Stopwatch watch(read);
        setup.prepare();
    }
    tell_of(setup.strokes(), caller);
    settle_shot(options, setup, caller);
    if (script.empty()) return;
    const bool replace = options.overwrite || options.resume;
    const bool measured = has_shot(setup.node());
    if (measured) AtomicFile::check(beside, replace);
    setup.save_script(script, replace);
    if (measured) save_shot(setup.node(), beside, replace);
}

// Renders what is not kept; false when a frame could not be done.
bool render(const KeyOptions& options, const KeyPlan& plan, KeySetup& setup, Caller caller, KeyStats& stats) {
    std::chrono::nanoseconds read_ahead{0};
    prepare(options, setup, caller, read_ahead);
    Node& node = setup.node();
    Iop& root = options.stage.empty() ? node.image() : node.member(options.stage);
    Progress progress(options.quiet || options.progress != "bar");
    caller.progress = [&](double done, int all) { progress.update(done, all); };
    KeyPipeline pipeline(plan, setup.loader(), node, root, setup.inputs(), caller);
    if (options.stats) pipeline.measure_time();
    end_gently(options.grace);
    const bool good = pipeline.run();
    stats = pipeline.stats();
    stats.read += read_ahead;
    return good;
}

// Of the first frames, those that need not be made.
int kept_frames(const KeyOptions& options, const KeyPlan& plan, Caller caller) {
    // What is saved is what the set-up comes to.
    if (!options.resume || !options.save_script.empty()) return 0;
    Progress progress(options.quiet || options.progress != "bar");
    caller.progress = [&](double done, int all) { progress.update(done, all); };
    return kept_at_head(plan, caller);
}

// What processes that were killed have left of the plan's outputs.
void tidy_up(const KeyPlan& plan, const Caller& caller) {
    const int count = remove_leftovers(files_of(plan));
    if (count == 0) return;
    caller.tell(
        std::to_string(count) +
        (count == 1 ? " file is removed that a killed process" : " files are removed that killed processes") +
        " left");
}

int key(const KeyOptions& options) {
    catch_interrupts();
    const Caller caller = caller_for(options.quiet);
    KeySetup setup(options.setup, caller);
    if (!options.keep.empty()) setup.loader().keep_layers();
    if (setup.loader().has_stream()) refuse_twice(options);
    std::optional<KeyPlan> made = plan_for(options, setup.frames());
    if (!made) {
        caller.tell("--chunk " + options.chunk +
                    ": there are fewer frames than chunks, and this one has none");
        return kExitOk;
    }
    KeyPlan& plan = *made;
    plan.end = &ending_flag();
    survive_closed_pipes();
    set_file_threads(options.threads);

    if (!options.stage.empty()) setup.node().member(options.stage);  // says where there is none
    if (options.dry_run) return dry_run(options, plan, setup);
    check_outputs(plan, setup.names());
    tell_of_lost_mattes(options, plan, setup.node(), caller);

    if (plan.resume) tidy_up(plan, caller);
    add_fingerprints(plan, options, setup, caller);
    plan.kept = kept_frames(options, plan, caller);
    FrameLines lines(options.progress, plan.frames.open ? 0 : plan.frames.count());
    plan.report = [&lines](const FrameReport& one) { lines.tell(one); };
    for (int n = 0; n < plan.kept; ++n) lines.tell({plan.frames.at(n), FrameReport::State::kKept});
    bool good = true;
    KeyStats stats;
    stats.counts.kept = plan.kept;
    if (plan.kept < plan.frames.count()) good = render(options, plan, setup, caller, stats);
    if (stats.counts.left > 0) caller.warn("ended by SIGTERM");
    if (plan.frames.count() > 1 || plan.resume) caller.tell(counts_text(stats.counts));
    if (options.stats) std::fputs((options.json ? stats_json(stats) : stats_table(stats)).c_str(), stderr);
    if (stats.may_mend) return kExitTryAgain;
    return good ? kExitOk : kExitFailure;
}

int key_until_ended(const KeyOptions& options) {
    FrameLines lines(options.progress, 0);
    try {
        return key(options);
    } catch (const Interrupted&) {
        if (!ended_by_scheduler()) throw;
        report("ended by SIGTERM; what was not finished is dropped");
        lines.fail("ended by SIGTERM");
        return kExitTryAgain;
    } catch (const std::exception& error) {
        lines.fail(error.what());
        throw;
    }
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
    "After SIGTERM, as schedulers send it, no frame is begun, and those under way get 20 seconds (--grace) "
    "to be finished; a second one drops them at once. No unfinished file is left.\n"
    "Processes with --claim share frames by hidden files, .NAME.claim. What one held that was killed is "
    "taken over at once on the same machine, and by another machine 120 seconds after its holder last "
    "touched it, which it does each 15 seconds.\n"
    "Exit status: 0 when every frame was written or left to another process that has claimed it, 1 when not, "
    "2 for bad usage, 75 when another try may do the rest, after SIGTERM or where a disk was full or a file "
    "server did not answer, 130 when interrupted.";

}  // namespace

void add_key_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("key", "Key a still or an image sequence.");
    command->footer(std::string(kSetupOrder) + "\n" + kFooter);
    auto options = std::make_shared<KeyOptions>();
    add_key_options(*command, *options);
    command->callback([options, &run] { run = [options] { return key_until_ended(*options); }; });
}

}  // namespace veloxa
