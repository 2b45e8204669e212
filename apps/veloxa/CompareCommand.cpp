// veloxa compare: how far two images differ, channel by channel.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "Commands.h"
#include "Compare.h"
#include "Errors.h"
#include "FileParts.h"
#include "Fit.h"
#include "ImageFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

struct Options {
    std::string first;
    std::string second;
    std::optional<double> max_diff;
    std::string channel;
};

ChannelSet wanted_channels(const Options& options, const Image& a, const Image& b) {
    const ChannelSet present = a.info.channels + b.info.channels;
    if (options.channel.empty()) return present;
    for (const Channel c : kMaskRgba) {
        if (options.channel != channel_name(c)) continue;
        if (!present.has(c)) throw Error("neither image has channel " + options.channel);
        return c;
    }
    throw UsageError("--channel " + options.channel + ": expected R, G, B or A");
}

void print(const char* name, const Difference& d) {
    std::printf("%-8s %14.8g %14.8g %10.4g\n", name, d.largest, d.mean(), d.psnr());
}

int compare(const Options& options) {
    const Image a = read_image(options.first);
    const Image b = read_image(options.second);
    for (const std::string& path : {options.first, options.second}) {
        const std::string warning = parts_warning(path);
        if (!warning.empty()) report(path + ": " + warning);
    }
    if (a.info.format.box != b.info.format.box) {
        throw Error(options.second, "is " + size_text(b.info.format.box) + ", but " + options.first + " is " +
                                        size_text(a.info.format.box));
    }
    std::printf("%-8s %14s %14s %10s\n", "channel", "largest", "mean", "PSNR (dB)");
    Difference overall;
    for (const Channel c : wanted_channels(options, a, b)) {
        const Difference d = difference(a, b, c);
        print(channel_name(c), d);
        overall.add(d);
    }
    print("overall", overall);
    return options.max_diff && !(overall.largest <= *options.max_diff) ? kExitFailure : kExitOk;
}

}  // namespace

CLI::App* add_compare_command(CLI::App& app, Run& run) {
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
    command->callback([options, &run] { run = [options] { return compare(*options); }; });
    return command;
}

}  // namespace veloxa
