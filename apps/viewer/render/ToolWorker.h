// Uses the node's tools on a thread of its own, on a node of its own.
//
// One job at a time, in the order in which they came; a preview that waits is dropped for the next job.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ZoImage/Box.h"
#include "ZoImage/ToolMemory.h"
#include "ZoImage/ToolReport.h"
#include "render/NodeRenderer.h"

namespace veloxa::viewer {

struct ToolJob {
    std::uint64_t number = 0;  // comes back with what was done
    FramePtr frame;            // whole
    Settings settings;         // that the tool begins with
    std::shared_ptr<const Zo::Image::ToolMemory> memory;
    DrawnMattes mattes;
    std::string file;                   // of the frame's foreground, for messages
    std::size_t knob = 0;               // number of the tool's button in the panel
    double choice = 0.0;                // of its items, for buttons that have some
    std::vector<Zo::Image::Box> areas;  // of a stroke, in the frame; none for buttons
    bool preview = false;
};

struct ToolOutcome {
    ToolJob job;
    Settings settings;
    std::shared_ptr<const Zo::Image::ToolMemory> memory;
    std::vector<Zo::Image::ToolReport> reports;
    std::string error;  // what went wrong; then the settings are as before
    bool given_up = false;
};

class ToolWorker {
  public:
    // `done` is called on the worker's thread, once a job that was not dropped.
    explicit ToolWorker(std::function<void(ToolOutcome)> done);
    ~ToolWorker();
    ToolWorker(const ToolWorker&) = delete;
    ToolWorker& operator=(const ToolWorker&) = delete;

    // Any thread; returns at once.
    void submit(ToolJob job);
    // Gives up all that was submitted.
    void give_up();

  private:
    void run();
    ToolOutcome use(ToolJob job);

    const std::function<void(ToolOutcome)> done_;
    Zo::Image::AbortFlag abort_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<ToolJob> jobs_;
    bool ending_ = false;
    bool previewing_ = false;

    // The worker's own.
    DrawnInputs drawn_;
    NodeInputs inputs_;  // outlive the node
    std::unique_ptr<Node> node_;
    std::thread thread_;
};

}  // namespace veloxa::viewer
