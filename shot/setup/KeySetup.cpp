#include "shot/setup/KeySetup.h"

#include <algorithm>

#include "shot/Errors.h"
#include "shot/files/AtomicFile.h"
#include "shot/setup/ScreenChoice.h"
#include "shot/setup/ShotModel.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

constexpr const char* kScreenTool = "toolbar_screen";

FrameLoader::Names input_names(const SetupOptions& options) {
    FrameLoader::Names names;
    for (std::size_t n = 0; n < kInputCount; ++n) names[n] = PictureName(options.inputs[n]);
    return names;
}

// Those from 1 to the end of a stream, or as many of its as --frames names.
FrameRange frames_for(const SetupOptions& options, const FrameLoader::Names& names) {
    if (std::ranges::none_of(names, &PictureName::is_stream)) return frames_of(options.frames, names);
    if (!options.frames.empty()) return parse_frames(options.frames);
    return {.first = 1, .last = kMostFrames, .open = true};
}

}  // namespace

KeySetup::KeySetup(const SetupOptions& options, const Caller& caller)
    : options_(options),
      caller_(caller),
      names_(input_names(options)),
      frames_(frames_for(options, names_)),
      loader_(names_, fit_named(options.fit).value_or(Fit::kRefuse), options.colour, caller, frames_),
      node_(caller.abort) {
    node_.apply(options.settings, caller);
    take_mattes();
    inputs_.connect(node_.image());
    if (!options.screen.pick.empty()) parse_box("--pick", options.screen.pick);
    for (const std::string& text : options.strokes) {
        strokes_.push_back(parse_stroke(node_.panel(), text));
        if (strokes_.back().frame && options.frames.empty()) {
            throw UsageError("--stroke " + text + ": @FRAME needs --frames A-B");
        }
        if (loader_.has_stream() && strokes_.back().frame.value_or(frames_.first) != frames_.first) {
            throw UsageError("--stroke " + text +
                             ": standard input is read once, so strokes are of its first frame");
        }
    }
}

void KeySetup::take_mattes() {
    const std::string& script = options_.settings.script;
    DrawnMattes mattes = read_mattes(node_.applied_text(), script);
    if (!mattes.empty()) {
        const std::string count = std::to_string(mattes.size());
        caller_.tell(script + ": " + count + (mattes.size() == 1 ? " drawn matte" : " drawn mattes"));
    }
    draw(std::move(mattes));
}

void KeySetup::draw(DrawnMattes mattes) {
    loader_.draw(std::move(mattes));
    show_nothing();
}

void KeySetup::save_script(const std::string& path, bool overwrite) const {
    write_text(path, node_.script() + mattes_script(loader_.drawn()), overwrite);
}

std::pair<std::shared_ptr<const Image>, int> KeySetup::first_foreground() {
    for (int n = 0;; ++n) {
        try {
            return {loader_.foreground(frames_.at(n)), frames_.at(n)};
        } catch (const TryAgain&) {
            throw;  // another frame would give another key
        } catch (const Error&) {
            if (n + 1 == frames_.count() || loader_.has_stream()) throw;
        }
    }
}

bool KeySetup::picks_screen() const {
    return !strokes_.empty() && strokes_.front().tool->name() == kScreenTool;
}

void KeySetup::choose_screen_color() {
    const bool chosen = picks_screen() || has_screen_color(node_.panel(), options_.settings.sets);
    const auto first = [this] {
        const auto [image, frame] = first_foreground();
        return NamedImage{image, names_[kFg].at(frame)};
    };
    veloxa::choose_screen_color(node_, options_.screen, chosen, first, caller_);
}

void KeySetup::show(int frame) {
    if (shown_ == frame) return;
    const FrameInputs images = loader_.load(frame);
    inputs_.set(images);
    foreground_ = images[kFg].image;
    shown_ = frame;
}

void KeySetup::show_nothing() {
    inputs_.clear();
    foreground_ = nullptr;
    shown_.reset();
}

std::vector<ToolReport> KeySetup::measure_shot(const FrameRange& range, int most) {
    std::vector<ToolReport> reports;
    for (const int frame : spread_over(range, most)) {
        try {
            show(frame);
            ToolReport report = node_.use_tool(node_.panel().get("unmix_analyse")).at(0);
            if (!report.failure.empty()) throw Error(names_[kFg].at(frame), report.failure);
            report.frame = frame;
            reports.push_back(std::move(report));
        } catch (const Interrupted&) {
            throw;
        } catch (const TryAgain&) {
            throw;  // other machines would measure it, and key otherwise
        } catch (const Error& error) {
            caller_.warn(std::string(error.what()) + "; it is left out of the shot");
        }
    }
    show_nothing();
    return reports;
}

void KeySetup::use_shot(const std::string& path) {
    load_shot(node_, path);
    show(first_foreground().second);
    node_.image().validate(true);
    const std::string fault = node_.image().diagnostic("shot");
    show_nothing();
    if (!fault.empty()) throw Error(path, fault);
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
        check_inside("--stroke " + options_.strokes[n], *foreground_, stroke);
        note({apply_stroke(node_, stroke)});
    }
}

void KeySetup::prepare() {
    loader_.load_stills();
    loader_.check_choices(frames_.first);
    if (loader_.colour().converts()) first_foreground();  // says now where its space is not known
    choose_screen_color();
    // There is nothing to set up before a screen colour is chosen.
    const std::size_t before = picks_screen() ? 1 : 0;
    apply_strokes(0, before);
    if (options_.automatic) {
        show(first_foreground().second);
        note(set_up_automatically(node_, {foreground_, names_[kFg].at(*shown_)}, strokes_));
    }
    apply_strokes(before, strokes_.size());
    show_nothing();
    const std::string encoding = node_.panel().get("unmix_encoding").text();
    if (loader_.colour().converts() && keys_by_shot(node_) && encoding != "as stored") {
        caller_.warn("warning: unmix_encoding is " + encoding + ", but the inputs are converted to light");
    }
    if (!has_screen_color(node_.panel(), {})) {
        caller_.warn("warning: screen_color is 0,0,0, so the foreground passes through");
    }
}

}  // namespace veloxa
