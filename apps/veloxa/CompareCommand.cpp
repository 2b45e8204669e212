// veloxa compare: how far two images differ, channel by channel.
#include <array>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Commands.h"
#include "Terminal.h"
#include "shot/compare/Compare.h"

namespace veloxa {

namespace {

struct Options {
    std::string first;
    std::string second;
    std::optional<double> max_diff;
    std::string channel;
    bool json = false;
};

std::string row_of(const std::string& name, const Difference& d) {
    std::array<char, 96> line{};
    std::snprintf(line.data(), line.size(), "%-8s %14.8g %14.8g %10.4g\n", name.c_str(), d.largest, d.mean(),
                  d.psnr());
    return line.data();
}

std::string table_of(const Comparison& found) {
    std::string table = "channel         largest           mean  PSNR (dB)\n";
    for (const auto& [channel, difference] : found.channels) table += row_of(channel, difference);
    return table + row_of("overall", found.overall);
}

// {"channels": {NAME: {"largest", "mean", "psnr"}}, "overall": {...}}; what is infinite or no number is null.
std::string json_of(const Comparison& found) {
    const auto entry = [](const Difference& d) {
        return nlohmann::ordered_json{{"largest", d.largest}, {"mean", d.mean()}, {"psnr", d.psnr()}};
    };
    nlohmann::ordered_json all{{"channels", nlohmann::ordered_json::object()}};
    for (const auto& [channel, difference] : found.channels) all["channels"][channel] = entry(difference);
    all["overall"] = entry(found.overall);
    return all.dump(2) + "\n";
}

int compare(const Options& options) {
    const Comparison found = compare_files(PictureName(options.first), PictureName(options.second),
                                           options.channel, caller_for(false));
    print(options.json ? json_of(found) : table_of(found));
    return options.max_diff && !(found.overall.largest <= *options.max_diff) ? kExitFailure : kExitOk;
}

}  // namespace

void add_compare_command(CLI::App& app, Run& run) {
    CLI::App* command = app.add_subcommand("compare", "Compare two images of one size.");
    command->footer(
        "Prints the largest and the mean absolute difference and the PSNR (peak 1.0) of each channel and of "
        "all. A channel or a pixel that only one image has is compared with 0. NaN equals NaN; NaN against a "
        "number is an infinite difference.\n"
        "Exit status: 0, or 1 when the largest difference is above --max-diff (no limit without it).");
    auto options = std::make_shared<Options>();
    command->add_option("A", options->first, "Image file")->required();
    command->add_option("B", options->second, "Image file")->required();
    command->add_option("--max-diff", options->max_diff, "Fail when a difference is larger than this")
        ->type_name("X")
        ->check(CLI::NonNegativeNumber);
    command->add_option("--channel", options->channel, "Compare this channel only: R, G, B or A")
        ->type_name("C");
    command->add_flag("--json", options->json, "The table as JSON");
    command->callback([options, &run] { run = [options] { return compare(*options); }; });
}

}  // namespace veloxa
