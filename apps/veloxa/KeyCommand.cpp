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
#include "Node.h"
#include "Pick.h"
#include "ScreenChoice.h"

namespace veloxa {

using namespace Zo::Image;
namespace fs = std::filesystem;

namespace {

struct Options {
    std::array<std::string, kInputCount> inputs;
    std::string output;
    KnobSettings settings;
    std::string save_script;
    std::string pick;
    std::string screen;
    std::string frames;
    std::string stage;
    std::string depth;
    std::string fit;
    int threads = 0;
    bool stats = false;
    bool resume = false;
    bool overwrite = false;
    bool quiet = false;
};

FrameLoader::Names input_names(const Options& options) {
    FrameLoader::Names names;
    for (std::size_t n = 0; n < kInputCount; ++n) names[n] = FramePattern(options.inputs[n]);
    return names;
}

KeyPlan plan_for(const Options& options, const FrameLoader::Names& names) {
    KeyPlan plan;
    plan.output = FramePattern(options.output);
    plan.write = {depth_named(options.depth), options.overwrite || options.resume, &interrupt_flag()};
    plan.resume = options.resume;
    plan.threads = options.threads;

    bool moving = false;
    for (const FramePattern& name : names) moving = moving || name.has_frame();
    if (options.frames.empty()) {
        for (const FramePattern& name : names) {
            if (name.has_frame()) throw UsageError(name.name() + ": a frame pattern needs --frames A-B");
        }
        if (plan.output.has_frame())
            throw UsageError(options.output + ": a frame pattern needs --frames A-B");
        return plan;
    }
    plan.frames = parse_frames(options.frames);
    if (!moving) throw UsageError("--frames: no input has a frame pattern such as %04d or ####");
    if (plan.frames.count() > 1 && !plan.output.has_frame()) {
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

// The foreground of the first frame that can be read, and its number: a broken one is reported when its turn
// comes.
std::pair<std::shared_ptr<const Image>, int> first_foreground(FrameLoader& loader, const FrameRange& frames) {
    for (int n = 0;; ++n) {
        try {
            return {loader.foreground(frames.at(n)), frames.at(n)};
        } catch (const Interrupted&) {
            throw;
        } catch (const Error&) {
            if (n + 1 == frames.count()) throw;
        }
    }
}

void choose_screen_color(Node& node, FrameLoader& loader, const FrameRange& frames, const Options& options) {
    KnobPanel& panel = node.panel();
    if (!options.pick.empty()) {
        const Box box = parse_box(options.pick);
        set_screen_color(panel, mean_color(*first_foreground(loader, frames).first, box));
    } else if (!options.screen.empty() || !has_screen_color(panel, options.settings.sets)) {
        const auto [image, frame] = first_foreground(loader, frames);
        const std::string file = FramePattern(options.inputs[kFg]).at(frame);
        estimate_screen_color(panel, *image, file, options.screen, options.quiet);
    }
    if (!has_screen_color(panel, {})) {
        report("warning: screen_color is 0,0,0, so the foreground passes through");
    }
}

int key(const Options& options) {
    const FrameLoader::Names names = input_names(options);
    const KeyPlan plan = plan_for(options, names);
    if (!options.pick.empty()) parse_box(options.pick);
    catch_interrupts();
    OIIO::attribute("threads", options.threads);
    OIIO::attribute("exr_threads", options.threads);

    std::array<std::unique_ptr<ImageSource>, kInputCount> sources;  // the node's inputs outlive it
    Node node;
    node.apply(options.settings);
    Iop& root = options.stage.empty() ? node.image() : node.member(options.stage);
    check_outputs(plan, names);

    FrameLoader loader(names, fit_named(options.fit).value_or(Fit::kRefuse), plan.write.abort);
    std::chrono::nanoseconds read_ahead{0};
    {
        const Stopwatch watch(read_ahead);
        loader.load_stills();
        choose_screen_color(node, loader, plan.frames, options);
    }
    if (!options.save_script.empty()) node.save_script(options.save_script, plan.write.overwrite);

    for (std::size_t n = 0; n < kInputCount; ++n) {
        const int input = static_cast<int>(n);
        if (names[n].empty()) {
            node.image().set_input(input, node.image().default_input(input));
        } else {
            sources[n] = std::make_unique<ImageSource>(NodeContext{kInputNames[n]});
            node.image().set_input(input, sources[n].get());
        }
    }
    bool good = false;
    KeyStats stats;
    {
        Progress progress(plan.frames.count(), options.quiet);
        KeyPipeline pipeline(plan, loader, node.image(), root, sources, progress);
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
    "frame. Knobs are set in this order: --script, --set, --pick or --screen. `veloxa knobs` lists them.\n"
    "Boxes and rows count from the bottom left pixel of the foreground's display window.\n"
    "Exit status: 0 when every frame was written, 1 when not, 2 for bad usage, 130 when interrupted.";

void add_inputs(CLI::App& command, Options& options) {
    command.add_option("--fg", options.inputs[kFg], "Foreground against the backing")
        ->required()
        ->type_name("FILE");
    command.add_option("--cp", options.inputs[kCp], "Clean plate: the shot without the subject")
        ->type_name("FILE");
    command.add_option("--bg", options.inputs[kBg], "Background; black without it")->type_name("FILE");
    command.add_option("--gm", options.inputs[kGm], "Garbage matte: its alpha, else its first channel")
        ->type_name("FILE");
    command.add_option("--hm", options.inputs[kHm], "Holdout matte: its alpha, else its first channel")
        ->type_name("FILE");
}

void add_settings(CLI::App& command, Options& options) {
    command.add_option("--script", options.settings.script, "Set knobs from a script")->type_name("FILE");
    command.add_option("--set", options.settings.sets, "Set a knob: numbers by commas, menu items by name")
        ->type_name("KNOB=VALUE")
        ->allow_extra_args(false);
    command
        .add_option("--save-script", options.save_script, "Save the knobs that differ from their defaults")
        ->type_name("FILE");
    CLI::Option* const pick =
        command
            .add_option("--pick", options.pick,
                        "Set screen_color to the mean of a box of the first foreground that can be read")
            ->type_name("X,Y,R,T");
    command
        .add_option("--screen", options.screen,
                    "Find the backing in the first foreground that can be read: of whatever colour (auto, as "
                    "when nothing sets screen_color) or of this one")
        ->check(CLI::IsMember(kScreenChoices))
        ->excludes(pick);
}

void add_rendering(CLI::App& command, Options& options) {
    command.add_option("-o,--output", options.output, "Result; its extension chooses the format")
        ->required()
        ->type_name("FILE");
    command.add_option("--frames", options.frames, "Frames A to B, every Nth")->type_name("A-B[xN]");
    command.add_option("--threads", options.threads, "Threads to render with; all processors without it")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    command
        .add_option("--stage", options.stage,
                    "Write an internal operator's rows instead, on the working scale")
        ->type_name("MEMBER");
    command.add_flag("--stats", options.stats, "Print rows and time per operator");
    command.add_option("--depth", options.depth, "Samples: half in OpenEXR, else up to uint16, without it")
        ->check(CLI::IsMember({"half", "float", "uint8", "uint16"}));
    command
        .add_option("--fit", options.fit,
                    "Inputs of another size than the foreground: resize scales them, crop centres them, none "
                    "leaves them at the bottom left; edge pixels repeat. Without it they are errors")
        ->check(CLI::IsMember({"resize", "crop", "none"}));
    command.add_flag("--resume", options.resume, "Leave out frames whose output is there and whole");
    command.add_flag("--overwrite", options.overwrite, "Replace outputs that exist");
    command.add_flag("--quiet", options.quiet, "Show no progress");
}

}  // namespace

CLI::App* add_key_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("key", "Key a still or an image sequence.");
    command->footer(kFooter);
    auto options = std::make_shared<Options>();
    add_inputs(*command, *options);
    add_settings(*command, *options);
    add_rendering(*command, *options);
    command->callback([options, &run] { run = [options] { return key(*options); }; });
    return command;
}

}  // namespace veloxa
