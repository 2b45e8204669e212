#include "shot/sequence/KeyFingerprints.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

#include "ZoImage/Knob.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

// Whether the node keys by a shot, or may once it is set up.
bool may_key_by_shot(const Node& node, const SetupOptions& options) {
    const bool open = options.automatic && !node.named().contains(&node.panel().get("unmix_method"));
    return open || keys_by_shot(node);
}

// The first frame whose foreground is there; one that is there and broken is looked at by nobody.
int first_frame(const KeySetup& setup) {
    const FrameRange& frames = setup.frames();
    for (int n = 0; n < frames.count(); ++n) {
        std::error_code ignored;
        if (std::filesystem::exists(setup.names()[kFg].at(frames.at(n)), ignored)) return frames.at(n);
    }
    return frames.first;
}

void add_settings(Fingerprints& all, KeySetup& setup, const SetupOptions& options) {
    const Node& node = setup.node();
    all.add("settings", node.script());
    all.add("mattes", mattes_script(setup.loader().drawn()));
    std::set<std::string> named;
    for (const Knob* knob : node.named()) named.insert(knob->name());
    for (const std::string& name : named) all.add("named", name);
    all.add("pick", options.screen.pick);
    all.add("screen", options.screen.screen);
    all.add("automatic", options.automatic ? "1" : "0");
    for (const std::string& stroke : options.strokes) all.add("stroke", stroke);
    all.add("fit", options.fit);
    all.add("in-space", options.colour.in_space);
    all.add("out-space", options.colour.out_space);
    const std::string config = setup.loader().colour().config_file();
    if (!config.empty()) all.add("colour configuration", read_text(config));
}

// What set-ups look at besides the frame that is keyed.
void add_frames(Fingerprints& all, KeySetup& setup, const SetupOptions& options) {
    const bool chosen = has_screen_color(setup.node().panel(), options.settings.sets);
    bool first = options.automatic;
    for (const std::string& text : options.strokes) {
        const Stroke stroke = parse_stroke(setup.node().panel(), text);
        if (stroke.frame) all.add_frame(*stroke.frame, false);
        first |= !stroke.frame;
    }
    if (first) {
        all.add_frame(first_frame(setup), false);
    } else if (!options.screen.pick.empty() || !options.screen.screen.empty() || !chosen) {
        all.add_frame(first_frame(setup), true);
    }
}

void add_shot(Fingerprints& all, const Node& node, const ShotSource& source) {
    if (has_shot(node)) all.add("shot", shot_text(node));
    if (!source.file.empty()) all.add("shot", read_text(source.file));
    if (!source.measured) return;
    for (const int frame : spread_over(*source.measured, kShotFrames)) all.add_frame(frame, false);
}

std::string text_of(const KeyOutput& output, const WriteOptions& how, bool provenance) {
    std::string extension = std::filesystem::path(output.file.name()).extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::string text = extension;
    for (const int number : {static_cast<int>(output.picture), how.bits, how.quality, how.tile_width,
                             how.tile_height, how.layers ? 1 : 0, provenance ? 1 : 0}) {
        text += " " + std::to_string(number);
    }
    return text + " " + how.depth.c_str() + " " + how.compression;
}

}  // namespace

std::shared_ptr<const Fingerprints> fingerprints_of(KeySetup& setup, const SetupOptions& options,
                                                    const KeyPlan& plan, const FingerprintSource& source,
                                                    const AbortFlag* abort) {
    if (setup.loader().has_stream()) return nullptr;
    auto all = std::make_shared<Fingerprints>(setup.names(), source.files, abort);
    all->add("program", plan.program);
    all->add("stage", source.stage);
    add_settings(*all, setup, options);
    add_frames(*all, setup, options);
    if (may_key_by_shot(setup.node(), options)) add_shot(*all, setup.node(), source.shot);
    for (const KeyOutput& output : plan.outputs)
        all->add_output(text_of(output, plan.how_to_write(output), plan.provenance));
    return all;
}

}  // namespace veloxa
