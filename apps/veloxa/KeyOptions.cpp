#include "KeyOptions.h"

#include <unistd.h>

#include "DryRun.h"
#include "Terminal.h"
#include "Usage.h"
#include "Version.h"
#include "shot/Errors.h"
#include "shot/farm/Chunk.h"
#include "shot/sequence/KeyFingerprints.h"

namespace veloxa {

namespace {

void add_rendering_options(CLI::App& command, KeyOptions& options) {
    command
        .add_option(
            "-o,--output", options.outputs,
            "Result; its extension chooses the format. comp=FILE writes the composite, matte=FILE the matte "
            "as one channel, cut=FILE the premultiplied subject, several from one run")
        ->required()
        ->type_name("[PICTURE=]FILE")
        ->allow_extra_args(false);
    CLI::Option* const save =
        command
            .add_option("--save-script", options.save_script,
                        "Save the knobs that differ from their defaults, and what was measured of the shot "
                        "beside them, as .shot")
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
    command
        .add_option(
            "--chunk", options.chunk,
            "Make the frames of part I of N alone, counted from 0, as of --frames cut into N parts of one "
            "length; slurm takes both from the array's task that runs it. What is set up and measured is as "
            "without it")
        ->type_name("I/N")
        ->excludes(save);
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
    command.add_flag(
        "--resume", options.resume,
        "Leave out frames whose outputs are whole and were asked for alike, by their fingerprints; make "
        "again what is broken or stale");
    command
        .add_option("--fingerprint", options.fingerprint,
                    "What tells --resume that a file which is read is the same: its path, size and time of "
                    "change, or its content, which is read whole; status without it")
        ->check(OneOf({"status", "content"}));
    command.add_flag("--overwrite", options.overwrite, "Replace outputs that exist");
    command.add_flag("--quiet", options.quiet, "Show no progress");
    add_dry_run_option(command, options.dry_run);
}

// For processes that something else starts and ends.
void add_farm_options(CLI::App& command, KeyOptions& options) {
    command.add_flag_callback(
        "--claim", [&options] { options.claim = options.resume = true; },
        "Share the frames with other processes that key the same with --claim: each is made by one of them. "
        "Implies --resume");
    command
        .add_option("--progress", options.progress,
                    "What is told of frames: bar for people; json, a line a frame on standard error; openjd, "
                    "progress and status of the Open Job Description on standard output")
        ->check(OneOf({"bar", "json", "openjd"}))
        ->capture_default_str();
    command
        .add_option("--grace", options.grace,
                    "After SIGTERM no frame is begun, and those under way may take so long")
        ->type_name("SECONDS")
        ->check(CLI::Range(0, 86400))
        ->capture_default_str();
}

}  // namespace

void add_key_options(CLI::App& command, KeyOptions& options) {
    add_setup_options(command, options.setup);
    add_rendering_options(command, options);
    add_farm_options(command, options);
}

std::optional<KeyPlan> plan_for(const KeyOptions& options, const FrameRange& frames) {
    if (!options.chunk.empty() && options.setup.frames.empty()) {
        throw UsageError("--chunk " + options.chunk + ": needs --frames A-B, the frames of all chunks");
    }
    KeyPlan plan;
    plan.outputs = parse_outputs(options.outputs);
    plan.write.overwrite = options.overwrite || options.resume;
    options.format.apply_to(plan.write);
    plan.write.layers = !options.keep.empty();
    plan.program = version_text(false);
    plan.provenance = !options.no_provenance;
    plan.claim = options.claim;
    plan.resume = options.resume;
    plan.threads = options.threads;
    for (const KeyOutput& output : plan.outputs) {
        const FramePattern& file = output.file;
        if (file.is_stream()) refuse_terminal(STDOUT_FILENO, "-o -: standard output");
        if (file.is_stream() && options.resume) {
            throw UsageError("--resume: standard output holds nothing that could be resumed");
        }
        if (file.is_stream() && options.progress == "openjd") {
            throw UsageError("--progress openjd: standard output carries the stream");
        }
        if (file.is_stream() && !options.chunk.empty()) {
            throw UsageError("--chunk: standard output is one stream and has no chunks");
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
    const std::optional<FrameRange> made =
        options.chunk.empty() ? frames : part_of(frames, parse_chunk(options.chunk));
    if (!made) return std::nullopt;
    plan.frames = *made;
    return plan;
}

ShotSource shot_source_of(const KeyOptions& options, const FrameRange& frames) {
    return shot_source(options.shot, options.shot_frames, options.setup.settings.script, frames);
}

void add_fingerprints(KeyPlan& plan, const KeyOptions& options, KeySetup& setup, const Caller& caller) {
    const FileIs files = options.fingerprint == "content" ? FileIs::kContent : FileIs::kStatus;
    const FingerprintSource source{shot_source_of(options, setup.frames()), options.stage, files};
    plan.fingerprints = fingerprints_of(setup, options.setup, plan, source, caller.abort);
}

}  // namespace veloxa
