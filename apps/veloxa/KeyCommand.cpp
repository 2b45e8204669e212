// veloxa key: keys a still or a sequence.
#include <OpenImageIO/imageio.h>

#include <cstdio>
#include <memory>

#include "Commands.h"
#include "Interrupt.h"
#include "Options.h"
#include "Progress.h"
#include "StatsTable.h"
#include "Terminal.h"
#include "shot/Errors.h"
#include "shot/sequence/KeyPipeline.h"
#include "shot/setup/KeySetup.h"

namespace veloxa {

using namespace Zo::Image;

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
    bool overwrite = false;
    bool quiet = false;
};

KeyPlan plan_for(const Options& options, const FrameRange& frames) {
    KeyPlan plan;
    plan.frames = frames;
    plan.output = FramePattern(options.output);
    plan.write = {depth_named(options.depth), options.overwrite || options.resume};
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

int key(const Options& options) {
    Caller caller = caller_for(options.quiet);
    KeySetup setup(options.setup, caller);
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
    tell_of(setup.strokes(), caller);
    if (!options.save_script.empty()) node.save_script(options.save_script, plan.write.overwrite);

    bool good = false;
    KeyStats stats;
    {
        Progress progress(options.quiet);
        caller.progress = [&](double done, int all) { progress.update(done, all); };
        KeyPipeline pipeline(plan, setup.loader(), node.image(), root, setup.inputs(), caller);
        if (options.stats) pipeline.measure_time();
        good = pipeline.run();
        stats = pipeline.stats();
        stats.read += read_ahead;
    }
    if (options.stats) std::fputs(table_of(stats).c_str(), stderr);
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
    add_threads_option(command, options.threads);
    command
        .add_option("--stage", options.stage,
                    "Write an internal operator's rows instead, on the working scale")
        ->type_name("MEMBER");
    command.add_flag("--stats", options.stats, "Print rows and time per operator");
    add_depth_option(command, options.depth);
    command.add_flag("--resume", options.resume, "Leave out frames whose output is there and whole");
    command.add_flag("--overwrite", options.overwrite, "Replace outputs that exist");
    command.add_flag("--quiet", options.quiet, "Show no progress");
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
