#include "farm/Job.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "farm/Quoting.h"
#include "shot/Errors.h"

namespace veloxa {

namespace {

constexpr int kRestarts = 10;    // of a task, by whatever cause
constexpr int kEndSeconds = 40;  // before a time limit, besides what the frames under way get

std::string count_of(int count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string title(const Job& job) {
    return count_of(job.frames, "frame") + " in " + count_of(job.chunks, "chunk");
}

// `chunk` is bash's own for the number of the task.
std::string command_of(const Job& job, std::string_view chunk, std::string_view between,
                       std::string_view more = "") {
    std::string line = shell_word(job.program) + " key" + std::string(between);
    line += shell_words(job.words, between) + std::string(between);
    line += "--resume --chunk " + std::string(chunk) + std::string(more);
    return line;
}

}  // namespace

int chunks_for(int wanted, int frames) {
    constexpr int kFramesAChunk = 10;
    return std::min({wanted > 0 ? wanted : (frames - 1) / kFramesAChunk + 1, frames, kMostChunks});
}

std::string slurm_script(const Job& job) {
    const std::string chunks = std::to_string(job.chunks);
    const std::string again = std::to_string(kExitTryAgain);
    std::string text =
        "#!/bin/bash\n# " + title(job) +
        ". Submit it with sbatch, again where frames are missing: whole ones are left alone.\n";
    const auto batch = [&](const std::string& option) { text += "#SBATCH --" + option + "\n"; };
    batch("job-name=" + job.name);
    batch("array=0-" + std::to_string(job.chunks - 1));
    batch("output=%x-%A_%a.log");
    batch("open-mode=append");
    batch("requeue");
    batch("signal=B:TERM@" + std::to_string(job.grace + kEndSeconds));
    if (job.threads > 0) batch("cpus-per-task=" + std::to_string(job.threads));
    // Without cgroups a task sees all of its node's processors.
    const std::string threads = job.threads > 0 ? "" : " \\\n        --threads \"${SLURM_CPUS_ON_NODE:-1}\"";
    text += R"sh(
caught=
trap 'caught=1; kill -TERM "$!" 2>/dev/null' TERM

if cd -- )sh" +
            shell_word(job.folder) + "; then\n    " +
            command_of(job, "\"$SLURM_ARRAY_TASK_ID/" + chunks + "\"", " \\\n        ", threads) + R"sh( &
    while
        wait "$!"
        status=$?
        [ "$caught" ] # which ends the waiting before the program has ended
    do caught=; done
    # Ended as it began, before it looks after signals.
    [ "$status" -ne 143 ] || status=)sh" +
            again + R"sh(
else
    status=)sh" +
            again + R"sh(
fi

# What may pass is tried again, but for a task that was cancelled. SLURM_JOB_ID can stand for the whole array.
task=${SLURM_ARRAY_JOB_ID}_$SLURM_ARRAY_TASK_ID
if [ "$status" -eq )sh" +
            again + R"sh( ] && [ "${SLURM_RESTART_COUNT:-0}" -lt )sh" + std::to_string(kRestarts) + R"sh( ] &&
    [ "$(squeue -h -j "$task" -o %T)" = RUNNING ]; then
    scontrol requeue "$task"
fi
exit "$status"
)sh";
    return text;
}

std::string openjd_template(const Job& job) {
    if (!is_utf8(job.folder)) {
        throw UsageError(job.folder +
                         ": a job template takes names in UTF-8 alone, which this folder's is not");
    }
    using Json = nlohmann::ordered_json;
    const std::string last = std::to_string(job.chunks - 1);
    const std::string chunk = "{{Task.Param.Chunk}}/" + std::to_string(job.chunks);
    const bool told = std::ranges::find(job.words, "--progress") != job.words.end();
    const std::string script = "cd -- \"$1\" || exit " + std::to_string(kExitTryAgain) + "\nexec " +
                               command_of(job, chunk, " ", told ? "" : " --progress openjd");
    const Json folder{{"name", "Folder"},
                      {"type", "PATH"},
                      {"objectType", "DIRECTORY"},
                      {"dataFlow", "INOUT"},
                      {"description", "Where relative names of files begin"},
                      {"default", job.folder}};
    const Json run{
        {"command", "bash"},
        {"args", {"-c", script, "veloxa", "{{Param.Folder}}"}},
        {"cancelation", {{"mode", "NOTIFY_THEN_TERMINATE"}, {"notifyPeriodInSeconds", job.grace + 10}}}};
    const Json chunks{{"name", "Chunk"}, {"type", "INT"}, {"range", "0-" + last}};
    const Json step{{"name", "Key"},
                    {"parameterSpace", {{"taskParameterDefinitions", Json::array({chunks})}}},
                    {"script", {{"actions", {{"onRun", run}}}}}};
    const Json all{{"specificationVersion", "jobtemplate-2023-09"},
                   {"name", job.name},
                   {"description", title(job)},
                   {"parameterDefinitions", Json::array({folder})},
                   {"steps", Json::array({step})}};
    return all.dump(2) + "\n";
}

std::string makefile(const Job& job) {
    std::string goals;
    for (int n = 0; n < job.chunks; ++n) goals += " chunk-" + std::to_string(n);
    std::string recipe =
        make_recipe("cd -- " + shell_word(job.folder) + " && exec " + command_of(job, "", " \\\n\t    "));
    return "# " + title(job) +
           ". Run it as make -jN -f FILE, again where frames are missing: whole ones are left alone.\n"
           "SHELL := /bin/bash\nchunks :=" +
           goals + "\n\n.PHONY: all $(chunks)\nall: $(chunks)\n\n$(chunks): chunk-%:\n\t" + recipe + "$*/" +
           std::to_string(job.chunks) + "\n";
}

}  // namespace veloxa
