// veloxa farm slurm, openjd, make: a key as a job of many tasks.
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>

#include "KeyOptions.h"
#include "Terminal.h"
#include "Usage.h"
#include "farm/FarmCommands.h"
#include "farm/Job.h"
#include "shot/Errors.h"
#include "shot/setup/ShotModel.h"

namespace veloxa {

namespace {

constexpr const char* kFooter =
    "It takes the options of `veloxa key`, which each task runs with --resume and its --chunk, in this "
    "folder; it reads no plate.\n"
    "A task that keys a shot by what is measured over all of it measures that itself, unless --shot FILE has "
    "it from `veloxa analyse`.\n"
    "Exit status: 0 when it is printed, 1 when not, 2 for bad usage.";

struct JobOptions {
    KeyOptions key;
    int chunks = 0;  // 0: as many as the frames call for
    std::string name = "veloxa";
};

// The options as they were given, but for those of the job.
std::vector<std::string> words_of(const CLI::App& command) {
    std::vector<std::string> words;
    std::vector<const CLI::Option*> seen;
    for (const CLI::Option* option : command.parse_order()) {
        const std::string name = option->get_name();
        if (name == "--chunks" || name == "--name") continue;
        if (std::ranges::find(seen, option) != seen.end()) continue;  // all of its values came with the first
        seen.push_back(option);
        for (const std::string& value : option->results()) {
            const bool flag = option->get_items_expected_max() == 0;
            if (flag && value == "true") {
                words.push_back(name);
            } else if (flag || value.empty() || value.starts_with('-')) {
                words.push_back(name + "=" + value);
            } else {
                words.insert(words.end(), {name, value});
            }
        }
    }
    return words;
}

void check_name(const std::string& name) {
    const bool good =
        !name.empty() && name.size() <= 64 &&
        name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-") ==
            std::string::npos;
    if (!good) throw UsageError("--name " + name + ": expected up to 64 letters, digits and ._- alone");
}

// Throws UsageError for what the tasks could not be run with.
FrameRange check_key(KeyOptions key, const Caller& caller) {
    const auto refuse = [](bool given, const char* option, const char* why) {
        if (given) throw UsageError(std::string(option) + ": " + why);
    };
    refuse(!key.chunk.empty(), "--chunk", "each task has its own; --chunks N says how many");
    refuse(!key.save_script.empty(), "--save-script", "every task would write it");
    refuse(key.dry_run, "--dry-run", "tasks would make nothing; veloxa key --dry-run tells what they will");
    refuse(key.setup.frames.empty(), "--frames", "is needed: a job has the frames A-B");
    key.resume = true;
    KeySetup setup(key.setup, caller);
    refuse(setup.loader().has_stream(), "-", "standard input is one stream and has no chunks");
    const std::string& script = key.setup.settings.script;
    std::error_code missing;
    if (keys_by_shot(setup.node()) && key.shot.empty() &&
        (script.empty() || !key.shot_frames.empty() ||
         !std::filesystem::exists(shot_beside(script), missing))) {
        caller.warn("each task measures the shot; veloxa analyse does it once, and --shot FILE takes it");
    }
    return plan_for(key, setup.frames())->frames;
}

// As it was called, so that a program that is not on the path of the hosts is found there too.
std::string program() {
    const std::string name = program_invocation_name;
    if (name.find('/') == std::string::npos) return name;
    return std::filesystem::absolute(name).lexically_normal();
}

Job job_of(const JobOptions& options, const CLI::App& command) {
    check_name(options.name);
    const FrameRange frames = check_key(options.key, caller_for(options.key.quiet));
    Job job;
    job.name = options.name;
    job.folder = std::filesystem::current_path();
    job.program = program();
    job.words = words_of(command);
    job.frames = frames.count();
    job.chunks = chunks_for(options.chunks, job.frames);
    job.threads = options.key.threads;
    job.grace = options.key.grace;
    return job;
}

void add(CLI::App& farm, Run& run, const char* name, const char* meaning, std::string (*text)(const Job&)) {
    CLI::App* command = farm.add_subcommand(name, meaning);
    command->footer(kFooter);
    auto options = std::make_shared<JobOptions>();
    command
        ->add_option("--chunks", options->chunks,
                     "Tasks to cut the frames into, at most one a frame; without it about ten frames each")
        ->type_name("N")
        ->check(CLI::Range(1, kMostChunks));
    command->add_option("--name", options->name, "The job's name")->type_name("NAME")->capture_default_str();
    add_key_options(*command, options->key);
    command->callback([options, command, text, &run] {
        run = [options, command, text] {
            print(text(job_of(*options, *command)));
            return kExitOk;
        };
    });
}

}  // namespace

void add_farm_job_commands(CLI::App& farm, Run& run) {
    add(farm, run, "slurm", "Print a key as a batch script for Slurm, an array of tasks.", slurm_script);
    add(farm, run, "openjd", "Print a key as a job template of the Open Job Description 2023-09.",
        openjd_template);
    add(farm, run, "make", "Print a key as a makefile, for one host.", makefile);
}

}  // namespace veloxa
