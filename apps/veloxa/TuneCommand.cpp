// veloxa tune: sets the knobs from strokes and saves them as a script.
#include <memory>

#include "Commands.h"
#include "Interrupt.h"
#include "Options.h"
#include "Terminal.h"
#include "TuneReport.h"
#include "ZoImage/KnobValues.h"
#include "shot/files/AtomicFile.h"
#include "shot/setup/KeySetup.h"

namespace veloxa {

namespace {

struct Options {
    SetupOptions setup;
    std::string output;
    bool json = false;
    bool overwrite = false;
    bool quiet = false;
};

int tune(const Options& options) {
    if (!options.output.empty()) AtomicFile::check(options.output, options.overwrite);
    catch_interrupts();
    KeySetup setup(options.setup, caller_for(options.quiet));
    const Zo::Image::KnobValues before(setup.node().panel());
    setup.prepare();
    if (!options.output.empty()) setup.node().save_script(options.output, options.overwrite);

    const TuneReport report{setup.strokes(), before.changes()};
    print(options.json ? json_of(report) : table_of(report));
    return kExitOk;
}

constexpr const char* kFooter =
    "Strokes are applied in the order given. Each finds the knob values nearest to the present ones with "
    "which the pixels under it, and what earlier strokes asked, come out as told; where they contradict each "
    "other the newest stroke wins, and the table tells how many samples are left out.\n"
    "veloxa key takes the script with --script.";

}  // namespace

CLI::App* add_tune_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("tune", "Set the knobs by strokes of the sampling tools.");
    command->footer(kFooter);
    auto options = std::make_shared<Options>();
    add_setup_options(*command, options->setup);
    command
        ->add_option("-o,--output,--save-script", options->output,
                     "Script of the knobs that differ from their defaults; the table alone without it")
        ->type_name("FILE");
    command->add_flag("--json", options->json, "The table as JSON");
    command->add_flag("--overwrite", options->overwrite, "Replace a script that exists");
    command->add_flag("--quiet", options->quiet, "Do not tell how the screen colour was found");
    command->callback([options, &run] { run = [options] { return tune(*options); }; });
    return command;
}

}  // namespace veloxa
