#include "KeySetup.h"

#include <algorithm>

#include "Errors.h"
#include "Pick.h"
#include "ScreenChoice.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr const char* kScreenTool = "toolbar_screen";

FrameLoader::Names input_names(const SetupOptions& options) {
    FrameLoader::Names names;
    for (std::size_t n = 0; n < kInputCount; ++n) names[n] = FramePattern(options.inputs[n]);
    return names;
}

FrameRange frames_of(const SetupOptions& options, const FrameLoader::Names& names) {
    const auto moving =
        std::find_if(names.begin(), names.end(), [](const FramePattern& name) { return name.has_frame(); });
    if (options.frames.empty()) {
        if (moving == names.end()) return {};
        throw UsageError(moving->name() + ": a frame pattern needs --frames A-B");
    }
    const FrameRange frames = parse_frames(options.frames);
    if (moving == names.end()) {
        throw UsageError("--frames: no input has a frame pattern such as %04d or ####");
    }
    return frames;
}

}  // namespace

void add_setup_options(CLI::App& command, SetupOptions& options) {
    constexpr std::array<const char*, kInputCount> kMeanings{
        "Foreground against the backing", "Clean plate: the shot without the subject",
        "Background; black without it", "Garbage matte: its alpha, else its first channel",
        "Holdout matte: its alpha, else its first channel"};
    for (std::size_t n = 0; n < kInputCount; ++n) {
        command.add_option(std::string("--") + kInputNames[n], options.inputs[n], kMeanings[n])
            ->type_name("FILE")
            ->required(n == kFg);
    }
    command
        .add_option("--fit", options.fit,
                    "Inputs of another size than the foreground: resize scales them, crop centres them, none "
                    "leaves them at the bottom left; edge pixels repeat. Without it they are errors")
        ->check(CLI::IsMember({"resize", "crop", "none"}));
    command.add_option("--frames", options.frames, "Frames A to B, every Nth")->type_name("A-B[xN]");
    add_knob_options(command, options.settings);
    add_screen_options(command, options.screen, "the first foreground that can be read");
    command.add_flag(
        "--auto", options.automatic,
        "Set the node up from the first foreground that can be read, before any stroke but one of the "
        "screen tool at their head; knobs that --script or --set name stay as they are");
    command
        .add_option("--stroke", options.strokes,
                    "Use a sampling tool on a box, as add_overlay=10,20,30,40; of a sequence's frame N with "
                    "@N behind the tool, else of the first that can be read")
        ->type_name("TOOL=X,Y,R,T")
        ->allow_extra_args(false);
}

KeySetup::KeySetup(const SetupOptions& options, const AbortFlag* abort)
    : options_(options),
      names_(input_names(options)),
      frames_(frames_of(options, names_)),
      loader_(names_, fit_named(options.fit).value_or(Fit::kRefuse), abort),
      node_(abort) {
    node_.apply(options.settings);
    inputs_.connect(node_.image(), names_);
    if (!options.screen.pick.empty()) parse_box("--pick", options.screen.pick);
    for (const std::string& text : options.strokes) {
        strokes_.push_back(parse_stroke(node_.panel(), text));
        if (strokes_.back().frame && options.frames.empty()) {
            throw UsageError("--stroke " + text + ": @FRAME needs --frames A-B");
        }
    }
}

std::pair<std::shared_ptr<const Image>, int> KeySetup::first_foreground() {
    for (int n = 0;; ++n) {
        try {
            return {loader_.foreground(frames_.at(n)), frames_.at(n)};
        } catch (const Interrupted&) {
            throw;
        } catch (const Error&) {
            if (n + 1 == frames_.count()) throw;
        }
    }
}

bool KeySetup::picks_screen() const {
    return !strokes_.empty() && strokes_.front().tool->name() == kScreenTool;
}

void KeySetup::choose_screen_color() {
    KnobPanel& panel = node_.panel();
    const ScreenOptions& screen = options_.screen;
    if (!screen.pick.empty()) {
        set_screen_color(panel, mean_color(*first_foreground().first, parse_box("--pick", screen.pick)));
    } else if (!screen.screen.empty() ||
               (!picks_screen() && !has_screen_color(panel, options_.settings.sets))) {
        const auto [image, frame] = first_foreground();
        find_screen_color(node_, *image, names_[kFg].at(frame), screen.screen, options_.quiet);
    }
}

void KeySetup::show(int frame) {
    if (shown_ == frame) return;
    const FrameInputs images = loader_.load(frame);
    inputs_.set(images);
    foreground_ = images[kFg].image;
    shown_ = frame;
}

void KeySetup::note(std::vector<ToolReport> reports) {
    for (ToolReport& report : reports) {
        reports_.push_back(std::move(report));
        reports_.back().frame = *shown_;
    }
}

void KeySetup::apply_strokes(std::size_t begin, std::size_t end) {
    for (std::size_t n = begin; n < end; ++n) {
        const Stroke& stroke = strokes_[n];
        show(stroke.frame ? *stroke.frame : first_foreground().second);
        check_inside("--stroke " + options_.strokes[n], *foreground_, stroke.box);
        note({apply_stroke(node_, stroke)});
    }
}

void KeySetup::prepare() {
    loader_.load_stills();
    choose_screen_color();
    // There is nothing to set up before a screen colour is chosen.
    const std::size_t before = picks_screen() ? 1 : 0;
    apply_strokes(0, before);
    if (options_.automatic) {
        show(first_foreground().second);
        note(set_up_automatically(node_, names_[kFg].at(*shown_)));
    }
    apply_strokes(before, strokes_.size());
    inputs_.clear();
    foreground_ = nullptr;
    shown_.reset();
    if (!has_screen_color(node_.panel(), {})) {
        report("warning: screen_color is 0,0,0, so the foreground passes through");
    }
}

}  // namespace veloxa
