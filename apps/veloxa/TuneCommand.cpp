// veloxa tune: sets the knobs from strokes and saves them as a script.
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "Commands.h"
#include "DryRun.h"
#include "Options.h"
#include "Signals.h"
#include "Terminal.h"
#include "ZoImage/Knob.h"
#include "ZoImage/KnobValues.h"
#include "shot/files/AtomicFile.h"
#include "shot/setup/KeySetup.h"

namespace veloxa {

using namespace Zo::Image;
using nlohmann::ordered_json;

namespace {

struct Options {
    SetupOptions setup;
    std::string output;
    bool json = false;
    bool overwrite = false;
    bool quiet = false;
    bool dry_run = false;
};

struct TuneReport {
    std::vector<ToolReport> strokes;
    std::vector<KnobChange> changes;  // all in all, the screen colour's too
};

ordered_json value_of(const std::string& word) {
    if (word == "true" || word == "false") return word == "true";
    double number = 0.0;
    return Knob::to_double(word, number) ? ordered_json(number) : ordered_json(word);
}

ordered_json values_of(const std::string& text) {
    std::vector<std::string> words;
    Knob::Script_List(text, words);
    if (words.size() == 1) return value_of(words.front());
    ordered_json list = ordered_json::array();
    for (const std::string& word : words) list.push_back(value_of(word));
    return list;
}

ordered_json changes_of(const std::vector<KnobChange>& changes) {
    ordered_json list = ordered_json::array();
    for (const KnobChange& c : changes) {
        list.push_back({{"name", c.knob}, {"before", values_of(c.before)}, {"after", values_of(c.after)}});
    }
    return list;
}

std::string table_of(const TuneReport& report) {
    std::size_t knobs = std::string_view("knob").size();
    std::size_t values = std::string_view("before").size();
    const auto widen = [&](const std::vector<KnobChange>& changes) {
        for (const KnobChange& change : changes) {
            knobs = std::max(knobs, change.knob.size());
            values = std::max(values, change.before.size());
        }
    };
    widen(report.changes);
    for (const ToolReport& stroke : report.strokes) widen(stroke.changes);

    std::string text;
    for (const ToolReport& stroke : report.strokes) text += text_of(stroke, knobs, values);
    if (report.changes.empty()) return text + "no knob changed\n";
    text += "all in all\n" + text_of(KnobChange{"knob", "before", "after"}, knobs, values);
    for (const KnobChange& change : report.changes) text += text_of(change, knobs, values);
    return text;
}

// {"strokes": [{"tool", "frame", "box", "knobs": [{"name", "before", "after"}], "satisfied", "unsatisfied",
// "unusable", "notes"}], "knobs": [...]}; values are numbers, lists of numbers, true, false or menu items.
std::string json_of(const TuneReport& report) {
    ordered_json strokes = ordered_json::array();
    for (const ToolReport& s : report.strokes) {
        strokes.push_back({{"tool", s.tool},
                           {"frame", s.frame},
                           {"box", {s.box.x, s.box.y, s.box.r, s.box.t}},
                           {"knobs", changes_of(s.changes)},
                           {"satisfied", s.satisfied},
                           {"unsatisfied", s.unsatisfied},
                           {"unusable", s.unusable},
                           {"notes", s.notes}});
    }
    return ordered_json{{"strokes", strokes}, {"knobs", changes_of(report.changes)}}.dump(2) + "\n";
}

int tune(const Options& options) {
    catch_interrupts();
    KeySetup setup(options.setup, caller_for(options.quiet));
    if (options.dry_run) {
        Preview preview = preview_of(setup, options.setup, setup.frames());
        preview.make(options.output, options.overwrite);
        return show(preview);
    }
    if (!options.output.empty()) AtomicFile::check(options.output, options.overwrite);
    if (setup.loader().has_stream()) refuse_terminal(STDIN_FILENO, "standard input");
    const KnobValues before(setup.node().panel());
    setup.prepare();
    if (!options.output.empty()) setup.save_script(options.output, options.overwrite);

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

void add_tune_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("tune", "Set the knobs by strokes of the sampling tools.");
    command->footer(std::string(kSetupOrder) + "\n" + kFooter);
    auto options = std::make_shared<Options>();
    add_setup_options(*command, options->setup);
    command
        ->add_option("-o,--output,--save-script", options->output,
                     "Script of the knobs that differ from their defaults; the table alone without it")
        ->type_name("FILE");
    command->add_flag("--json", options->json, "The table as JSON");
    command->add_flag("--overwrite", options->overwrite, "Replace a script that exists");
    command->add_flag("--quiet", options->quiet, "Do not tell how the screen colour was found");
    add_dry_run_option(*command, options->dry_run);
    command->callback([options, &run] { run = [options] { return tune(*options); }; });
}

}  // namespace veloxa
