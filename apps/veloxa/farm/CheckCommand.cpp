// veloxa farm check: what is left to do of a key.
#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "KeyOptions.h"
#include "Progress.h"
#include "Signals.h"
#include "Terminal.h"
#include "farm/FarmCommands.h"
#include "farm/Job.h"
#include "shot/Errors.h"
#include "shot/farm/Chunk.h"
#include "shot/farm/Leftovers.h"
#include "shot/farm/OutputState.h"

namespace veloxa {

using nlohmann::ordered_json;

namespace {

constexpr const char* kFooter =
    "It takes the options of `veloxa key` and looks whether that, with --resume, would have anything left to "
    "do: outputs that are missing, broken, or stale, which were asked for otherwise; and at what processes "
    "left that were killed, which key --resume removes. It reads no plate's pixels.\n"
    "--array prints the tasks that are to be run again, as `sbatch --array` takes them; --chunks is that of "
    "the job.\n"
    "Exit status: 0 when nothing is left to do and nothing lies about, with --array when no chunk is to be "
    "run again, 1 when not, 2 for bad usage.";

constexpr std::array<const char*, 4> kStateNames{"whole", "stale", "broken", "missing"};

struct CheckOptions {
    KeyOptions key;
    bool json = false;
    bool array = false;
    int chunks = 0;  // 0: as many as a job has that is not told
};

struct Checked {
    int index = 0;  // of the frame in the range
    int frame = 0;
    std::string file;
    OutputState state = OutputState::kWhole;
};

struct Findings {
    std::vector<Checked> outputs;
    std::vector<Leftover> left;

    int count(OutputState state) const {
        return static_cast<int>(std::ranges::count(outputs, state, &Checked::state));
    }
    bool well() const {
        return left.empty() && count(OutputState::kWhole) == static_cast<int>(outputs.size());
    }
};

Findings look_at(const KeyPlan& plan, const Caller& caller, bool quiet) {
    Findings found;
    std::vector<std::string> files;
    Progress progress(quiet);
    for (int index = 0; index < plan.frames.count(); ++index) {
        const int frame = plan.frames.at(index);
        const std::vector<std::string> fingerprints = plan.fingerprints->of(frame);
        for (std::size_t n = 0; n < plan.outputs.size(); ++n) {
            files.push_back(plan.outputs[n].file.at(frame));
            const OutputState state = output_state(files.back(), fingerprints[n], caller.abort);
            found.outputs.push_back({index, frame, files.back(), state});
        }
        progress.update(index + 1, plan.frames.count());
    }
    found.left = leftovers(files);
    return found;
}

std::string text_of(const Findings& found) {
    std::string text;
    for (const Checked& one : found.outputs) {
        if (one.state == OutputState::kWhole) continue;
        text += one.file + ": " + kStateNames[static_cast<std::size_t>(one.state)] + "\n";
    }
    for (const Leftover& one : found.left) {
        text += one.path + ": left over by process " + std::to_string(one.process);
        text += one.machine.empty() ? "\n" : " on " + one.machine + "\n";
    }
    text += std::to_string(found.outputs.size()) + (found.outputs.size() == 1 ? " output: " : " outputs: ");
    for (std::size_t n = 0; n < kStateNames.size(); ++n) {
        text += std::to_string(found.count(static_cast<OutputState>(n))) + " " + kStateNames[n] + ", ";
    }
    return text + std::to_string(found.left.size()) + " left over\n";
}

std::string json_of(const Findings& found) {
    ordered_json all{{"outputs", found.outputs.size()}, {"whole", found.count(OutputState::kWhole)}};
    for (const char* const name : {"stale", "broken", "missing", "left_over"})
        all[name] = ordered_json::array();
    for (const Checked& one : found.outputs) {
        if (one.state == OutputState::kWhole) continue;
        all[kStateNames[static_cast<std::size_t>(one.state)]].push_back(
            {{"frame", one.frame}, {"file", one.file}});
    }
    for (const Leftover& one : found.left) {
        all["left_over"].push_back({{"file", one.path},
                                    {"kind", one.kind == Leftover::Kind::kClaim ? "claim" : "temporary"},
                                    {"machine", one.machine},
                                    {"process", one.process}});
    }
    // Names of files are bytes.
    return all.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

// "3,7-9\n", the chunks in which an output is not whole; empty for none.
std::string array_of(const Findings& found, const FrameRange& frames, int chunks) {
    std::map<int, int> runs;  // the first of chunks that follow each other, and the last
    for (const Checked& one : found.outputs) {
        if (one.state == OutputState::kWhole) continue;
        const int chunk = chunk_of(frames, one.index, chunks);
        if (!runs.empty() && runs.rbegin()->second >= chunk - 1) {
            runs.rbegin()->second = chunk;
        } else {
            runs[chunk] = chunk;
        }
    }
    std::string text;
    for (const auto& [first, last] : runs) {
        text += (text.empty() ? "" : ",") + std::to_string(first);
        if (last > first) text += "-" + std::to_string(last);
    }
    return text.empty() ? "" : text + "\n";
}

int check(const CheckOptions& options) {
    catch_interrupts();
    Caller caller;
    caller.abort = &interrupt_flag();
    caller.warn = report;
    KeySetup setup(options.key.setup, caller);
    std::optional<KeyPlan> plan = plan_for(options.key, setup.frames());
    if (setup.loader().has_stream() ||
        (plan && std::ranges::any_of(plan->outputs, &FramePattern::is_stream, &KeyOutput::file))) {
        throw UsageError("-: there is nothing to look at of a stream");
    }
    if (options.array && !options.key.chunk.empty()) {
        throw UsageError("--chunk " + options.key.chunk + ": --array looks at all of --chunks");
    }
    Findings found;
    if (plan) {
        add_fingerprints(*plan, options.key, setup, caller);
        found = look_at(*plan, caller, options.key.quiet);
    }
    if (options.array) {
        const std::string list =
            array_of(found, plan->frames, chunks_for(options.chunks, plan->frames.count()));
        print(list);
        return list.empty() ? kExitOk : kExitFailure;
    }
    print(options.json ? json_of(found) : text_of(found));
    return found.well() ? kExitOk : kExitFailure;
}

}  // namespace

void add_farm_check_command(CLI::App& farm, Run& run) {
    CLI::App* command =
        farm.add_subcommand("check", "Tell what of a key is missing, broken, stale or left over.");
    command->footer(kFooter);
    auto options = std::make_shared<CheckOptions>();
    add_key_options(*command, options->key);
    command->remove_option(command->get_option("--json"));  // of --stats
    CLI::Option* const json = command->add_flag("--json", options->json, "Print what is found as JSON");
    CLI::Option* const array =
        command->add_flag("--array", options->array,
                          "Print the chunks in which an output is not whole, as 3,7-9, and nothing else");
    array->excludes(json);
    command
        ->add_option(
            "--chunks", options->chunks,
            "With --array: chunks of the job; without it as many as `veloxa farm` makes of the frames")
        ->type_name("N")
        ->check(CLI::Range(1, kMostChunks))
        ->needs(array);
    command->callback([options, &run] { run = [options] { return check(*options); }; });
}

}  // namespace veloxa
