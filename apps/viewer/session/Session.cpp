// The panel and undo.
#include "session/Session.h"

#include <OpenImageIO/sysutil.h>

#include <algorithm>
#include <utility>

#include "session/Project.h"
#include "shot/setup/ShotModel.h"

namespace veloxa::viewer {

using namespace Zo::Image;

SessionPlace place_on_this_machine() {
    SessionPlace place;
    const std::size_t memory = OIIO::Sysutil::physical_memory();
    if (memory == 0) return place;
    place.frame_budget = std::min(place.frame_budget, memory / 6);
    place.row_budget = std::min(place.row_budget, memory / 12);
    place.picture_budget = std::min(place.picture_budget, memory / 6);
    return place;
}

Session::Session(SessionPlace place)
    : place_(std::move(place)),
      node_(std::make_unique<Node>()),
      defaults_(node_->panel()),
      settings_(defaults_),
      autosave_(place_.rescue_folder.empty() ? nullptr : std::make_unique<Autosave>(place_.rescue_folder)),
      frames_(place_.frame_budget,
              {.changed = [this](int frame) { post([this, frame] { frame_changed(frame); }); },
               .told = [this](const std::string& line) { post([this, line] { tell(line); }); }}),
      view_(place_.row_budget, place_.picture_budget,
            [this](ViewResult result) {
                auto shared = std::make_shared<ViewResult>(std::move(result));
                post([this, shared] {
                    if (shared->number <= former_) return;
                    if (!shared->error.empty()) tell(shared->error);
                    if (events.shown) events.shown(*shared);
                });
            }),
      tools_([this](ToolOutcome outcome) {
          auto shared = std::make_shared<ToolOutcome>(std::move(outcome));
          post([this, shared] { take(*shared); });
      }) {
    history_.start({state(), nullptr});
}

Session::~Session() {
    *alive_ = false;
    if (autosave_) autosave_->drop();
}

void Session::post(std::function<void()> call) {
    place_.post([alive = std::weak_ptr<bool>(alive_), call = std::move(call)] {
        const auto here = alive.lock();
        if (here && *here) call();
    });
}

void Session::tell(const std::string& line) {
    if (events.message) events.message(line);
}

void Session::settle() {
    settings_ = Settings(panel(), settings_);
    if (events.settings) events.settings();
    look();
}

void Session::commit(const std::string& name) {
    history_.add(name, {state(), memory_});
    keep_safe();
    if (events.settings) events.settings();
}

void Session::keep_safe() {
    if (!autosave_) return;
    if (modified()) {
        const std::string path = document_.empty() ? place_.rescue_folder + "/-" : document_;
        const auto text = [state = state(), path] {
            const Node node;
            state.settings.give(node.panel());
            return RescueText{project_text(state, node.panel(), path), shot_text(node)};
        };
        autosave_->keep(text, document_);
    } else {
        autosave_->drop();
    }
}

void Session::begin_edit(const std::string& name) {
    if (editing_++ == 0) edit_ = name;
}

void Session::end_edit() {
    if (editing_ > 0 && --editing_ == 0) commit(edit_);
}

void Session::set(Knob& knob, double value, int i) {
    begin_edit(knob.target().label());
    if (knob.get_value(i) != value && knob.set_value(value, i)) {
        knob.target().changed();
        settle();
    }
    end_edit();
}

void Session::reset(Knob& knob) {
    if (!knob.takes_value()) return;
    begin_edit("reset " + knob.target().label());
    knob.target().restore_default();
    knob.target().changed();
    settle();
    end_edit();
}

void Session::reset_all() {
    begin_edit("reset everything");
    std::vector<Knob*> changed;
    for (const auto& knob : panel().knobs()) {
        if (!knob->takes_value() || knob->kind() == Knob::Kind::kLink || !knob->differs_from_default())
            continue;
        knob->restore_default();
        changed.push_back(knob.get());
    }
    for (Knob* const knob : changed) knob->changed();
    settle();
    end_edit();
}

void Session::press(Knob& button) {
    if (button.flag(kKnobLooks)) {
        strokes_.push_back({current_frame(), number_of(button), {}, button.get_value()});
        return work_off();
    }
    begin_edit(button.label());
    panel().press(button);
    settle();
    end_edit();
}

std::size_t Session::number_of(const Knob& knob) const {
    const auto& knobs = node_->panel().knobs();
    const auto found = std::ranges::find(knobs, &knob, [](const auto& k) { return k.get(); });
    return static_cast<std::size_t>(found - knobs.begin());
}

void Session::use_tool(Knob* tool) {
    cancel_stroke();
    tool_ = tool;
    picking_ = nullptr;
    if (tool != nullptr) tool->activate();
    if (events.modes) events.modes();
}

void Session::pick_colour(Knob* knob) {
    cancel_stroke();
    picking_ = knob;
    tool_ = nullptr;
    if (events.modes) events.modes();
}

bool Session::undo() {
    give_up_tools();
    if (!history_.undo()) return false;
    restore(history_.now());
    return true;
}

bool Session::redo() {
    give_up_tools();
    if (!history_.redo()) return false;
    restore(history_.now());
    return true;
}

void Session::restore(const Moment& moment) {
    moment.state.settings.give(panel());
    settings_ = moment.state.settings;
    memory_ = moment.memory;
    mattes_ = moment.state.mattes;
    if (!(moment.state.files == files_)) put_in_place(moment.state.files);
    keep_safe();
    if (events.settings) events.settings();
    look();
}

void Session::set_mattes(DrawnMattes mattes, const std::string& name, bool going_on) {
    mattes_ = std::move(mattes);
    if (events.settings) events.settings();
    look();
    if (!going_on) commit(name);
}

}  // namespace veloxa::viewer
