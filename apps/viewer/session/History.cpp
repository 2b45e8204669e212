#include "session/History.h"

#include <utility>

namespace veloxa::viewer {

void History::start(Moment now) {
    saved_ = now.state;
    moments_.clear();
    moments_.push_back({{}, std::move(now)});
    at_ = 0;
}

void History::add(std::string name, Moment now) {
    if (now.state == this->now().state && now.memory == this->now().memory) return;
    moments_.resize(at_ + 1);
    moments_.push_back({std::move(name), std::move(now)});
    if (moments_.size() > kSteps) moments_.pop_front();
    at_ = moments_.size() - 1;
    if (at_ >= kRemembered) moments_[at_ - kRemembered].moment.memory = nullptr;
}

bool History::undo() {
    if (at_ == 0) return false;
    --at_;
    return true;
}

bool History::redo() {
    if (at_ + 1 >= moments_.size()) return false;
    ++at_;
    return true;
}

}  // namespace veloxa::viewer
