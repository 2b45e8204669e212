// veloxa key: keys a still or a sequence.
#include <OpenImageIO/imageio.h>

#include <cstdio>
#include <filesystem>
#include <memory>

#include "AtomicFile.h"
#include "Commands.h"
#include "Errors.h"
#include "Interrupt.h"
#include "KeyPipeline.h"
#include "KeySetup.h"

namespace veloxa {

using namespace Zo::Image;
namespace fs = std::filesystem;

namespace {

struct Options {
    SetupOptions setup;
    std::string output;
    std::string save_script;
    std::string stage;
    std::string depth;
    int threads = 0;
    bool stats = false;
    bool resume = false;
};

KeyPlan plan_for(const Options& options, const FrameRange& frames) {
    KeyPlan plan;
    plan.frames = frames;
    plan.output = FramePattern(options.output);
    plan.write = {depth_named(options.depth), options.setup.overwrite || options.resume, &interrupt_flag()};
    plan.resume = options.resume;
    plan.threads = options.threads;
    if (options.setup.frames.empty() && plan.output.has_frame()) {
        throw UsageError(options.output + ": a frame pattern needs --frames A-B");
    }
    if (frames.count() > 1 && !plan.output.has_frame()) {
        throw UsageError(options.output + ": several frames need a frame pattern such as %04d or ####");
    }
    return plan;
}

// What can be known to go wrong with the outputs is said before any frame is rendered.
void check_outputs(const KeyPlan& plan, const FrameLoader::Names& names) {
    for (int n = 0; n < plan.frames.count(); ++n) {
        const int frame = plan.frames.at(n);
        const std::string output = plan.output.at(frame);
        AtomicFile::check(output, plan.write.overwrite);
        if (!fs::exists(output)) continue;
        for (const FramePattern& name : names) {
            std::error_code missing;
            if (!name.empty() && fs::equivalent(output, name.at(frame), missing)) {
                throw UsageError(output + ": is an input too");
            }
        }
    }
    check_writable(plan.output.at(plan.frames.first), plan.write);
}

// What a stroke left undone; that it did as it was told needs no line.
void report_strokes(const std::vector<ToolReport>& strokes) {
    for (const ToolReport& stroke : strokes) {
        for (const std::string& note : stroke.notes) veloxa::report(stroke.tool + ": " + note);
        const int left = stroke.unsatisfied + stroke.unusable;
        if (left == 0) continue;
        veloxa::report(stroke.tool + ": " + std::to_string(left) + " of " +
                       std::to_string(left + stroke.satisfied) + " samples could not be satisfied");
    }
}

int key(const Options& options) {
    KeySetup setup(options.setup, &interrupt_flag());
    const KeyPlan plan = plan_for(options, setup.frames());
    catch_interrupts();
    OIIO::attribute("threads", options.threads);
    OIIO::attribute("exr_threads", options.threads);

    Node& node = setup.node();
    Iop& root = options.stage.empty() ? node.image() : node.member(options.stage);
    check_outputs(plan, setup.names());

    std::chrono::nanoseconds read_ahead{0};
    {
        const Stopwatch watch(read_ahead);
        setup.prepare();
    }
    if (!options.setup.quiet) report_strokes(setup.strokes());
    if (!options.save_script.empty()) node.save_script(options.save_script, plan.write.overwrite);

    bool good = false;
    KeyStats stats;
    {
        Progress progress(plan.frames.count(), options.setup.quiet);
        KeyPipeline pipeline(plan, setup.loader(), node.image(), root, setup.inputs(), progress);
        if (options.stats) pipeline.measure_time();
        good = pipeline.run();
        stats = pipeline.stats();
        stats.read += read_ahead;
    }
    if (options.stats) std::fputs(stats.text().c_str(), stderr);
    return good ? kExitOk : kExitFailure;
}

constexpr const char* kFooter =
    "Paths with a frame number, as %04d or ####, need --frames; inputs without one are the same in every "
    "frame. Knobs are set in this order: --script, --set, --pick or --screen, --auto, --stroke; --auto "
    "leaves alone what --script and --set name. `veloxa knobs` lists them.\n"
    "Boxes and rows count from the bottom left pixel of the foreground's display window.\n"
    "Exit status: 0 when every frame was written, 1 when not, 2 for bad usage, 130 when interrupted.";

void add_rendering(CLI::App& command, Options& options) {
    command.add_option("-o,--output", options.output, "Result; its extension chooses the format")
        ->required()
        ->type_name("FILE");
    command
        .add_option("--save-script", options.save_script, "Save the knobs that differ from their defaults")
        ->type_name("FILE");
    command.add_option("--threads", options.threads, "Threads to render with; all processors without it")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    command
        .add_option("--stage", options.stage,
                    "Write an internal operator's rows instead, on the working scale")
        ->type_name("MEMBER");
    command.add_flag("--stats", options.stats, "Print rows and time per operator");
    command
        .add_option("--depth", options.depth,
                    "Samples: half in OpenEXR, float in RLA, else up to uint16, without it")
        ->check(CLI::IsMember({"half", "float", "uint8", "uint16"}));
    command.add_flag("--resume", options.resume, "Leave out frames whose output is there and whole");
    command.add_flag("--overwrite", options.setup.overwrite, "Replace outputs that exist");
    command.add_flag("--quiet", options.setup.quiet, "Show no progress");
}

}  // namespace

CLI::App* add_key_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("key", "Key a still or an image sequence.");
    command->footer(kFooter);
    auto options = std::make_shared<Options>();
    add_setup_options(*command, options->setup);
    add_rendering(*command, *options);
    command->callback([options, &run] { run = [options] { return key(*options); }; });
    return command;
}

}  // namespace veloxa
