// Undo and redo.
//
// A step keeps the states on both sides of it, which share what they have in common, and what the tools
// remembered there.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "session/State.h"

namespace Zo::Image {
struct ToolMemory;
}

namespace veloxa::viewer {

// What undo gives back.
struct Moment {
    State state;
    std::shared_ptr<const Zo::Image::ToolMemory> memory;  // null where the tools remember nothing
};

class History {
  public:
    // The state of a new session, with nothing to undo.
    void start(Moment now);
    // Takes in what the user did; what was undone is forgotten. Nothing where all is as it was: a stroke that
    // turned no knob is a step, because later ones go by what the tools remember of it.
    void add(std::string name, Moment now);

    const Moment& now() const { return moments_[at_].moment; }
    // The names of the steps that undo and redo would take; empty for none.
    std::string undo_name() const { return at_ > 0 ? moments_[at_].name : std::string(); }
    std::string redo_name() const {
        return at_ + 1 < moments_.size() ? moments_[at_ + 1].name : std::string();
    }
    // False where there is none.
    bool undo();
    bool redo();

    // Whether the state is not the one that was saved last.
    bool changed() const { return !saved_ || !(now().state == *saved_); }
    void mark_saved(State state) { saved_ = std::move(state); }
    void mark_unsaved() { saved_.reset(); }

    // Pixels that tools remember take memory, so the oldest steps are undone without.
    static constexpr std::size_t kRemembered = 32;
    static constexpr std::size_t kSteps = 1000;

  private:
    struct Step {
        std::string name;
        Moment moment;
    };
    std::deque<Step> moments_;
    std::size_t at_ = 0;
    std::optional<State> saved_;
};

}  // namespace veloxa::viewer
