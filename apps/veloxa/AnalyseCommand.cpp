// veloxa analyse: measures a shot, so that its frames are keyed alike.
#include <memory>
#include <string>

#include "Commands.h"
#include "DryRun.h"
#include "Options.h"
#include "Signals.h"
#include "Terminal.h"
#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
#include "shot/setup/KeySetup.h"
#include "shot/setup/ShotModel.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

struct Options {
    SetupOptions setup;
    std::string output;
    int thin = kShotFrames;
    bool overwrite = false;
    bool quiet = false;
    bool dry_run = false;
};

int analyse(const Options& options) {
    catch_interrupts();
    const Caller caller = caller_for(options.quiet);
    KeySetup setup(options.setup, caller);
    if (setup.loader().has_stream()) {
        throw UsageError("standard input is read once, and analyse reads frames twice; give it files");
    }
    for (int n = 0; n < setup.frames().count(); ++n) {
        refuse_input(options.output, setup.names(), setup.frames().at(n));
    }
    if (options.dry_run) {
        Preview preview = preview_of(setup, options.setup, setup.frames());
        preview.make(options.output, options.overwrite);
        return show(preview);
    }
    AtomicFile::check(options.output, options.overwrite);
    setup.prepare();
    const auto measured = setup.measure_shot(setup.frames(), options.thin);
    if (measured.empty()) throw Error("no frame could be measured");
    for (const ToolReport& report : measured) {
        for (const std::string& note : report.notes) {
            caller.tell(setup.names()[kFg].at(report.frame) + ": " + note);
        }
    }
    save_shot(setup.node(), options.output, options.overwrite);
    return kExitOk;
}

constexpr const char* kFooter =
    "veloxa key takes the file with --shot, and with unmix_method unmix then keys every frame by the same "
    "noise, backing, rim colours and spill; without it key measures the frames that it keys. The plate, the "
    "clean plate, the garbage matte and the knobs are those of key.";

}  // namespace

void add_analyse_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("analyse", "Measure a shot, so that its frames are keyed alike.");
    command->footer(std::string(kSetupOrder) + "\n" + kFooter);
    auto options = std::make_shared<Options>();
    add_setup_options(*command, options->setup);
    command->add_option("-o,--output", options->output, "What was measured, as text")
        ->required()
        ->type_name("FILE");
    command->add_option("--thin", options->thin, "Measure at most N frames, spread over --frames")
        ->type_name("N")
        ->check(CLI::Range(1, 100000))
        ->capture_default_str();
    command->add_flag("--overwrite", options->overwrite, "Replace a file that exists");
    command->add_flag("--quiet", options->quiet, "Do not tell what was measured");
    add_dry_run_option(*command, options->dry_run);
    command->callback([options, &run] { run = [options] { return analyse(*options); }; });
}

}  // namespace veloxa
