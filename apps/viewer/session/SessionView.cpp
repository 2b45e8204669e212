// What a session looks at, and which frames it has read for that.
#include <algorithm>
#include <utility>

#include "render/Pictures.h"
#include "session/Session.h"

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

constexpr int kReadAhead = 8;  // frames in the direction of play, and one behind

std::size_t index(Against against) {
    return static_cast<std::size_t>(against);
}

}  // namespace

void Session::go_to(int frame) {
    const int steps = std::clamp(frame - range_.first, 0, range_.last - range_.first) / range_.step;
    const int next = range_.at(steps);
    if (next == frame_) return;
    cancel_stroke();
    direction_ = next < frame_ ? -1 : 1;
    frame_ = next;
    read_around();
    if (events.frames) events.frames();
    look();
}

void Session::read_around() {
    std::vector<int> frames{frame_};
    const int here = (frame_ - range_.first) / range_.step;
    const auto add = [&](int n) {
        const int at = here + n * direction_;
        if (at >= 0 && at < range_.count()) frames.push_back(range_.at(at));
    };
    for (int n = 1; n <= kReadAhead; ++n) add(n);
    add(-1);
    frames_.want(std::move(frames));
}

void Session::frame_changed(int frame) {
    if (frame == frame_) {
        if (const FramePtr here = current_frame(); here && !here->error.empty()) tell(here->error);
        look();
    }
    if (events.frames) events.frames();
}

std::vector<bool> Session::with_result(const std::vector<FramePtr>& frames) const {
    const Hash settings =
        Keyed{nullptr, settings_, mattes_, rendered_as(sights_[0].picture)}.settings_identity();
    std::vector<bool> results;
    results.reserve(frames.size());
    for (const FramePtr& frame : frames)
        results.push_back(view_.pictures().has(Keyed::identity(settings, *frame)));
    return results;
}

void Session::set_sight(std::size_t n, Sight sight) {
    sights_[n] = std::move(sight);
    find_settings(sights_[n].against);
    look();
}

void Session::set_sights(std::array<Sight, 2> sights) {
    sights_ = std::move(sights);
    for (const Sight& sight : sights_) find_settings(sight.against);
    look();
}

void Session::set_layout(Layout layout) {
    layout_ = layout;
    look();
}

void Session::set_difference_gain(float gain) {
    difference_gain_ = gain;
    look();
}

void Session::set_display(DisplayTransform display) {
    display_ = std::move(display);
    look();
}

void Session::set_counts(bool on) {
    counts_ = on;
    look();
}

void Session::save_as(Against slot) {
    compared_[index(slot)] = settings_;
    if (events.settings) events.settings();
    look();
}

bool Session::has(Against slot) const {
    return slot == Against::kNow || compared_[index(slot)].has_value();
}

Settings Session::settings_of(Against against) {
    if (against != Against::kNow && compared_[index(against)]) return *compared_[index(against)];
    return preview_ ? *preview_ : settings_;
}

void Session::find_settings(Against against) {
    const bool found = against == Against::kDefault || against == Against::kAutomatic;
    if (!found || compared_[index(against)] || finding_[index(against)] || files_.inputs[kFg].empty()) return;
    finding_[index(against)] = true;
    SetupOptions options;
    options.inputs = files_.inputs;
    options.frames = files_.frames;
    options.fit = files_.fit;
    options.colour = files_.colour;
    options.automatic = against == Against::kAutomatic;
    set_up(options, [this, against, shot = shot_](const Ready& ready) {
        if (shot != shot_) return;
        finding_[index(against)] = false;
        if (!ready.whole) return;
        compared_[index(against)] = ready.settings;
        if (events.settings) events.settings();
        look();
    });
}

PaneRequest Session::request_of(const Sight& sight) {
    return {current_frame(), settings_of(sight.against), mattes_, sight.picture, sight.view, sight.geometry};
}

void Session::look() {
    ViewRequest request;
    request.number = ++request_;
    request.panes.push_back(request_of(sights_[0]));
    if (layout_ != Layout::kSingle) request.panes.push_back(request_of(sights_[1]));
    request.difference = layout_ == Layout::kDifference;
    request.difference_gain = difference_gain_;
    request.counts = counts_;
    request.display = display_;
    view_.submit(std::move(request));
}

}  // namespace veloxa::viewer
