#include "render/Errands.h"

#include <utility>

#include "render/Priority.h"

namespace veloxa::viewer {

Errands::Errands(bool beside) : beside_(beside), thread_([this] { run(); }) {}

Errands::~Errands() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        abort_.raise();
    }
    wake_.notify_all();
    thread_.join();
}

void Errands::add(Work work) {
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(work));
    }
    wake_.notify_all();
}

std::size_t Errands::give_up() {
    const std::lock_guard lock(mutex_);
    const std::size_t left_out = waiting_.size();
    waiting_.clear();
    abort_.raise();
    return left_out;
}

void Errands::run() {
    beside_ ? step_far_back() : step_back();
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
        if (ending_) return;
        const Work work = std::move(waiting_.front());
        waiting_.pop_front();
        abort_.clear();
        lock.unlock();
        work(abort_);
        lock.lock();
    }
}

}  // namespace veloxa::viewer
