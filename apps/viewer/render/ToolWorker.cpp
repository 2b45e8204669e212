#include "render/ToolWorker.h"

#include <algorithm>
#include <utility>

#include "render/Priority.h"
#include "shot/Errors.h"
#include "shot/setup/Buttons.h"
#include "shot/setup/Stroke.h"

namespace veloxa::viewer {

using namespace Zo::Image;

ToolWorker::ToolWorker(std::function<void(ToolOutcome)> done)
    : done_(std::move(done)), thread_([this] { run(); }) {}

ToolWorker::~ToolWorker() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        abort_.raise();
    }
    wake_.notify_all();
    thread_.join();
}

void ToolWorker::submit(ToolJob job) {
    {
        const std::lock_guard lock(mutex_);
        std::erase_if(jobs_, [](const ToolJob& waiting) { return waiting.preview; });
        // What a stroke gives in the end need not wait for what it gave half-way.
        if (previewing_ && !job.preview) abort_.raise();
        jobs_.push_back(std::move(job));
    }
    wake_.notify_all();
}

void ToolWorker::give_up() {
    const std::lock_guard lock(mutex_);
    jobs_.clear();
    abort_.raise();
}

void ToolWorker::run() {
    step_back();
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
        if (ending_) return;
        ToolJob job = std::move(jobs_.front());
        jobs_.pop_front();
        previewing_ = job.preview;
        abort_.clear();
        lock.unlock();
        done_(use(std::move(job)));
        lock.lock();
        previewing_ = false;
    }
}

ToolOutcome ToolWorker::use(ToolJob job) {
    ToolOutcome outcome;
    outcome.settings = job.settings;
    outcome.memory = job.memory;
    try {
        if (!node_) {
            node_ = std::make_unique<Node>(&abort_);
            inputs_.connect(node_->image());
        }
        Node& node = *node_;
        inputs_.set(with_mattes(job.frame->inputs, job.mattes, drawn_));
        job.settings.give(node.panel());
        node.image().recall(job.memory);
        Knob& button = *node.panel().knobs()[job.knob];
        if (job.areas.empty()) {
            button.set_value(job.choice);
            outcome.reports = use_button(node, button, {job.frame->inputs[kFg].image, job.file});
        } else {
            outcome.reports = {apply_stroke(node, {&button, job.areas, {}})};
        }
        for (ToolReport& report : outcome.reports) report.frame = job.frame->number;
        outcome.settings = Settings(node.panel(), job.settings);
        outcome.memory = node.image().tool_memory();
    } catch (const Interrupted&) {
        outcome.given_up = true;
    } catch (const std::exception& error) {
        outcome.error = error.what();
    }
    outcome.job = std::move(job);
    return outcome;
}

}  // namespace veloxa::viewer
