#include "session/ViewColour.h"

#include <algorithm>
#include <utility>

#include "shot/Errors.h"

namespace veloxa::viewer {

namespace {

ColourConfig load_config(const ViewColour::Calls& calls) {
    try {
        return ColourConfig::load();
    } catch (const Error& error) {
        calls.told(std::string(error.what()) + "; the built-in displays are used");
        return ColourConfig::built_in();
    }
}

}  // namespace

ViewColour::ViewColour(Post post, Calls calls)
    : post_(std::move(post)),
      calls_(std::move(calls)),
      config_(std::make_shared<const ColourConfig>(load_config(calls_))),
      choices_(display_choices(*config_)) {}

ViewColour::~ViewColour() {
    *alive_ = false;
}

void ViewColour::choose(std::size_t choice) {
    if (choice >= choices_.size() || choice == choice_) return;
    choice_ = choice;
    make();
}

void ViewColour::choose(const std::string& label) {
    const auto found = std::ranges::find(choices_, label, &DisplayChoice::label);
    choose(static_cast<std::size_t>(found - choices_.begin()));
}

void ViewColour::take(const Header& header, const std::string& file) {
    InputSpace space = input_space(*config_, header, file);
    const bool same = space.name == space_.name && space.why == space_.why;
    if (same) return;
    space_ = std::move(space);
    make();
}

std::string ViewColour::account() const {
    const std::string from = space_.name.empty() ? "values as they are" : space_.name;
    const std::string why = space_.why.empty() ? "" : ", as " + space_.why;
    return from + why + (choices_.empty() ? "" : "; shown on " + choices_[choice_].label);
}

void ViewColour::make() {
    if (choices_.empty()) return;
    errands_.add([this, config = config_, from = space_.name, choice = choices_[choice_],
                  alive = std::weak_ptr<bool>(alive_)](const Zo::Image::AbortFlag&) {
        auto transform = std::make_shared<DisplayTransform>();
        std::string error;
        try {
            *transform = display_transform(*config, from, choice);
        } catch (const std::exception& fault) {
            error = fault.what();
        }
        post_([this, alive, transform, error] {
            const auto here = alive.lock();
            if (!here || !*here) return;
            if (!error.empty()) return calls_.told(error);
            calls_.ready(*transform);
        });
    });
}

}  // namespace veloxa::viewer
