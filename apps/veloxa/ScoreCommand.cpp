// veloxa score: how good a key is, where the true one is known.
#include <array>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Commands.h"
#include "Options.h"
#include "Progress.h"
#include "Signals.h"
#include "Terminal.h"
#include "shot/compare/Score.h"

namespace veloxa {

using nlohmann::ordered_json;

namespace {

struct Options {
    std::string result, truth, composite, composite_truth, regions, exclude, frames;
    bool json = false;
};

template <class... Values>
std::string printed(const char* format, Values... values) {
    std::array<char, 160> line{};
    std::snprintf(line.data(), line.size(), format, values...);
    return line.data();
}

std::string table_of(const ScoreReport& report) {
    std::string table = printed("%-8s %10s %10s %12s %10s %12s %10s\n", "pixels", "count", "SAD", "MSE",
                                "gradient", "connectivity", "PSNR (dB)");
    for (const Score& s : report.scores) {
        table += printed("%-8s %10lld", s.name.c_str(), static_cast<long long>(s.alpha.count));
        if (s.frames > 0)
            table +=
                printed(" %10.4f %12.4g %10.4f %12.4f", s.sad(), s.mse(), s.gradient(), s.connectivity());
        if (s.composite.count > 0) table += printed(" %10.2f", s.composite.psnr());
        table += "\n";
    }
    if (report.frames < 2) return table;
    return table + printed("%d frames: dtSSD %.6f, deviation %.6f in %lld still pixels\n", report.frames,
                           report.dtssd, report.still.deviation, static_cast<long long>(report.still.pixels));
}

// {"frames", "scores": {NAME: {"pixels", "sad", "mse", "gradient", "connectivity", "psnr"}}, "dtssd",
// "still": {"pixels", "deviation"}}; what a kind without pixels would have, psnr without composites and the
// last two without several frames are left out. An infinite psnr is null.
std::string json_of(const ScoreReport& report) {
    ordered_json all{{"frames", report.frames}, {"scores", ordered_json::object()}};
    for (const Score& s : report.scores) {
        ordered_json& score = all["scores"][s.name];
        score["pixels"] = s.alpha.count;
        if (s.frames == 0) continue;
        score["sad"] = s.sad();
        score["mse"] = s.mse();
        score["gradient"] = s.gradient();
        score["connectivity"] = s.connectivity();
        if (s.composite.count > 0) score["psnr"] = s.composite.psnr();
    }
    if (report.frames > 1) {
        all["dtssd"] = report.dtssd;
        all["still"] = {{"pixels", report.still.pixels}, {"deviation", report.still.deviation}};
    }
    return all.dump(2) + "\n";
}

int score(const Options& options) {
    const ScoreInputs inputs{PictureName(options.result),    PictureName(options.truth),
                             PictureName(options.composite), PictureName(options.composite_truth),
                             PictureName(options.regions),   PictureName(options.exclude)};
    const std::array names{inputs.result,          inputs.truth,   inputs.composite,
                           inputs.composite_truth, inputs.regions, inputs.exclude};
    const FrameRange frames = frames_of(options.frames, names);
    catch_interrupts();
    ScoreReport report;
    {
        Progress progress(options.frames.empty());
        Caller caller = caller_for(false);
        caller.progress = [&](double done, int all) { progress.update(done, all); };
        report = score_files(inputs, frames, caller);
    }
    print(options.json ? json_of(report) : table_of(report));
    return kExitOk;
}

constexpr const char* kFooter =
    "Of all pixels, of mixed ones (true alpha from 0.01 to 0.99) and, with --regions, of each region:\n"
    "  SAD           sum of the alpha's absolute differences, in thousands\n"
    "  MSE           mean squared difference\n"
    "  gradient      sum of squared differences of the gradients' lengths (Gaussian of 1.4), in thousands\n"
    "  connectivity  sum of differences in how far pixels hang together with the solid part, in thousands\n"
    "  PSNR          of the composite's red, green and blue, for a peak of 1\n"
    "as Rhemann et al. 2009 define the first four. Of --frames sums are means over the frames, MSE and PSNR "
    "are those of all pixels; besides, dtSSD is the root mean square of the differences between the alpha's "
    "changes from frame to frame and the true ones, and the deviation over time is taken where the true "
    "alpha "
    "changes by less than 0.002.\n"
    "Gradients and connections see the pixels that --exclude leaves out of the sums.";

}  // namespace

void add_score_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("score", "Score a key against the true matte and composite.");
    command->footer(kFooter);
    auto options = std::make_shared<Options>();
    command->add_option("RESULT", options->result, "File with the alpha of a key")->required();
    command->add_option("TRUTH", options->truth, "File with the true alpha")->required();
    const auto file = [&](const char* name, std::string& path, const char* meaning) {
        return command->add_option(name, path, meaning)->type_name("FILE");
    };
    CLI::Option* const composite = file("--composite", options->composite, "Composite that the key gave");
    CLI::Option* const truth = file("--composite-truth", options->composite_truth, "The true composite");
    composite->needs(truth);
    truth->needs(composite);
    file("--regions", options->regions, "Regions as `veloxa plate` writes them");
    file("--exclude", options->exclude, "Garbage matte: its pixels above 0 are left out");
    add_frames_option(*command, options->frames);
    command->add_flag("--json", options->json, "The table as JSON");
    command->callback([options, &run] { run = [options] { return score(*options); }; });
}

}  // namespace veloxa
