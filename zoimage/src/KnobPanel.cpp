#include "ZoImage/KnobPanel.h"

#include <algorithm>

#include "Text.h"
#include "ZoImage/NearestName.h"

namespace Zo::Image {

namespace {

constexpr std::size_t kUndoSteps = 100;

std::string label_of(const Knob& knob) {
    return "knob '" + knob.name() + "' ";
}

void check(const Knob& knob, std::string_view text) {
    std::vector<double> values;
    const std::string fault = knob.parse_text(text, values);
    if (!fault.empty()) throw KnobError(label_of(knob) + fault);
}

}  // namespace

KnobPanel::KnobPanel(Op& op) : op_(op), tab_(op.class_name()), making_(true) {
    op_.knobs(*this);
    making_ = false;
}

KnobPanel::~KnobPanel() = default;

void KnobPanel::refresh() {
    cursor_ = 0;
    last_ = nullptr;
    op_.knobs(*this);
}

Knob* KnobPanel::add(std::unique_ptr<Knob> knob) {
    knob->panel(this);
    const bool opens = knob->kind() == Knob::Kind::kTab || knob->kind() == Knob::Kind::kBeginToolbar;
    if (opens) tab_ = knob->name();
    knob->tab(tab_);
    if (knob->kind() == Knob::Kind::kEndToolbar) tab_.clear();
    knobs_.push_back(std::move(knob));
    return last_ = knobs_.back().get();
}

Knob* KnobPanel::find(Knob::Kind kind, std::string_view name) {
    for (std::size_t i = 0; i < knobs_.size(); ++i) {
        const std::size_t n = (cursor_ + i) % knobs_.size();
        if (knobs_[n]->kind() != kind || knobs_[n]->name() != name) continue;
        cursor_ = n + 1;
        return last_ = knobs_[n].get();
    }
    return last_ = nullptr;
}

Knob* KnobPanel::find(std::string_view name) const {
    if (name.empty()) return nullptr;
    const auto found =
        std::find_if(knobs_.begin(), knobs_.end(), [&](const auto& knob) { return knob->name() == name; });
    return found == knobs_.end() ? nullptr : found->get();
}

Knob& KnobPanel::get(std::string_view name) const {
    if (Knob* const knob = find(name)) return *knob;
    std::vector<std::string> names;
    for (const auto& knob : knobs_) {
        if (knob->takes_value()) names.push_back(knob->name());
    }
    throw KnobError("no knob named " + quoted(name) + did_you_mean(name, names));
}

Knob& KnobPanel::check_text(std::string_view name, std::string_view text) const {
    Knob& knob = get(name);
    check(knob, text);
    return knob.target();
}

void KnobPanel::set_from_text(std::string_view name, std::string_view text) {
    set_from_text(get(name), text);
}

void KnobPanel::set_from_text(Knob& knob, std::string_view text) {
    check(knob, text);
    knob.from_script(text);
}

void KnobPanel::press(Knob& knob) {
    switch (knob.kind()) {
        case Knob::Kind::kButton:
            knob.changed();
            return;
        case Knob::Kind::kScriptButton:
            run_command(knob);
            knob.set_value(knob.get_value() != 0.0 ? 0.0 : 1.0);
            return;
        case Knob::Kind::kToolButton:
            knob.activate();
            return;
        default:
            throw KnobError(label_of(knob) + "is no button");
    }
}

void KnobPanel::run_command(const Knob& knob) {
    std::vector<std::string> words;
    Knob::Script_List(knob.command(), words);
    if (words.size() != 3 || words[0] != "knob") {
        throw KnobError(label_of(knob) + "has a command that is not 'knob NAME VALUE'");
    }
    const char* const pressed = knob.get_value() != 0.0 ? "0" : "1";
    set_from_text(words[1], words[2] == "$value" ? pressed : words[2]);
}

void KnobPanel::changed(Knob& knob) {
    // An operator that sets knobs while it is told of a change is not told of the same knob again.
    if (std::find(reporting_.begin(), reporting_.end(), &knob) != reporting_.end()) return;
    reporting_.push_back(&knob);
    try {
        op_.knob_changed(&knob);
    } catch (...) {
        reporting_.pop_back();
        throw;
    }
    reporting_.pop_back();
    op_.invalidate();
}

void KnobPanel::new_undo(Knob& knob, const char* name) {
    if (undo_.size() == kUndoSteps) undo_.erase(undo_.begin());
    undo_.push_back({&knob, name != nullptr ? name : knob.name(), knob.text(true)});
}

bool KnobPanel::undo() {
    if (undo_.empty()) return false;
    const UndoStep step = std::move(undo_.back());
    undo_.pop_back();
    step.knob->from_script(step.text);
    return true;
}

}  // namespace Zo::Image
