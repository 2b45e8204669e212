// Strokes, buttons that look, colours that are picked.
#include <algorithm>
#include <utility>

#include "session/Session.h"
#include "shot/Errors.h"

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

// A tool is called by its tooltip's first words where its label is a picture's name.
std::string step_name(const Knob& knob) {
    const std::size_t icon = knob.label().find(';');
    std::string name = icon == std::string::npos ? knob.label() : knob.label().substr(icon + 1);
    name.erase(0, std::min(name.find_first_not_of(' '), name.size()));
    name.erase(std::min(name.find_last_not_of(' ') + 1, name.size()));
    return name.empty() ? knob.name() : name;
}

}  // namespace

ToolJob Session::job_of(const Stroke& stroke, bool preview) {
    const FramePtr& frame = stroke.frame;
    ToolJob job;
    job.number = stroke_;
    job.frame = frame;
    job.settings = settings_;
    job.memory = memory_;
    job.mattes = mattes_;
    job.file = frame->files.front().path;
    job.knob = stroke.knob;
    job.choice = stroke.choice;
    job.areas = stroke.areas;
    for (Box& area : job.areas) area.intersect(frame->inputs[kFg].image->info.format.box);
    std::erase_if(job.areas, [](const Box& area) { return area.empty(); });
    job.preview = preview;
    return job;
}

void Session::move_stroke(std::vector<Box> areas) {
    if (tool_ == nullptr) return;
    if (!std::exchange(stroking_, true)) ++stroke_;
    const FramePtr frame = current_frame();
    if (running_ || !frame || !frame->error.empty()) return;
    ToolJob job = job_of({frame, number_of(*tool_), std::move(areas)}, true);
    if (!job.areas.empty()) tools_.submit(std::move(job));
}

void Session::end_stroke(std::vector<Box> areas) {
    if (tool_ == nullptr) return;
    if (!std::exchange(stroking_, false)) ++stroke_;
    if (areas.empty()) return cancel_stroke();
    strokes_.push_back({current_frame(), number_of(*tool_), std::move(areas)});
    work_off();
}

void Session::cancel_stroke() {
    if (!stroking_ && !preview_) return;
    stroking_ = false;
    ++stroke_;
    if (!running_) tools_.give_up();
    forget_preview();
}

void Session::give_up_tools() {
    strokes_.clear();
    running_.reset();
    stroking_ = false;
    ++stroke_;
    tools_.give_up();
    forget_preview();
    if (events.busy) events.busy();
}

void Session::give_up() {
    setting_up_ -= static_cast<int>(set_ups_.give_up());
    finding_ = {};
    give_up_tools();
}

void Session::forget_preview() {
    if (std::exchange(preview_, std::nullopt)) look();
}

void Session::work_off() {
    if (running_) return;
    if (strokes_.empty()) return stroking_ ? void() : forget_preview();
    const Stroke stroke = std::move(strokes_.front());
    strokes_.pop_front();
    const FramePtr& frame = stroke.frame;
    if (!frame || !frame->error.empty()) {
        tell(frame ? frame->error : "The frame is not read yet, so no tool can look at it.");
        return work_off();
    }
    ToolJob job = job_of(stroke, false);
    if (job.areas.empty() && !stroke.areas.empty()) return work_off();
    running_ = job.number = ++jobs_;
    tools_.submit(std::move(job));
    if (events.busy) events.busy();
}

void Session::take(const ToolOutcome& outcome) {
    if (outcome.job.preview) {
        if (!stroking_ || outcome.job.number != stroke_ || outcome.given_up || !outcome.error.empty()) return;
        preview_ = outcome.settings;
        if (events.tool) events.tool(outcome.reports, true);
        return look();
    }
    if (running_ != outcome.job.number) return;  // given up
    running_.reset();
    preview_.reset();
    if (!outcome.error.empty()) tell(outcome.error);
    if (!outcome.given_up && outcome.error.empty()) {
        // What was turned by hand while the tool worked stays.
        settings_.changed(outcome.job.settings, outcome.settings).give(panel());
        memory_ = outcome.memory;
        settle();
        commit(step_name(*panel().knobs()[outcome.job.knob]));
        if (events.tool) events.tool(outcome.reports, false);
    } else {
        look();
    }
    if (events.busy) events.busy();
    work_off();
}

void Session::pick(const Box& box) {
    Knob* const knob = picking_;
    const FramePtr frame = current_frame();
    if (knob == nullptr || !frame) return;
    if (!frame->error.empty()) return tell(frame->error);
    try {
        const Image& plate = *frame->inputs[kFg].image;
        Box inside = box;
        inside.intersect(plate.info.format.box);
        if (inside.empty()) return tell("There is no picture at that place.");
        const std::array<double, 3> colour = mean_color(plate, inside);
        begin_edit(knob->target().label());
        for (int i = 0; i < 3; ++i) set(*knob, colour[static_cast<std::size_t>(i)], i);
        end_edit();
    } catch (const Error& error) {
        tell(error.what());
    }
    pick_colour(nullptr);
}

}  // namespace veloxa::viewer
