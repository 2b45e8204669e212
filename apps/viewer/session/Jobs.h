// Long work beside the window, at the lowest priority, one job after another: rendering a sequence to files,
// looking for its worst frames. Window thread; what jobs tell comes back by `post`.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "picture/StatusMatte.h"
#include "render/Errands.h"
#include "session/State.h"
#include "shot/files/ImageFile.h"

namespace veloxa::viewer {

struct RenderPlan {
    State state;                       // that is rendered, whatever becomes of the session
    std::string frames;                // A-B[xN]; the state's where it is empty
    std::vector<std::string> outputs;  // as -o takes them
    WriteOptions how;
    std::string program;  // for provenance
    bool resume = false;  // leave out frames whose outputs are whole
};

struct WorstFrame {
    int frame = 0;
    StatusCounts counts;
    std::string error;  // of a frame that could not be keyed

    // The worst first: what could not be keyed, then by the pixels that are wrong.
    friend bool operator<(const WorstFrame& a, const WorstFrame& b) {
        const auto faults = [](const StatusCounts& c) { return c.leaks + c.holes + c.broken; };
        if (a.error.empty() != b.error.empty()) return b.error.empty();
        return faults(a.counts) > faults(b.counts);
    }
};

struct JobEvents {
    std::function<void(double done, int all)> progress;         // in frames
    std::function<void(const std::string&)> line;               // FILE: what is wrong, or what was done
    std::function<void(const std::vector<WorstFrame>&)> worst;  // so far, by frames
    // What came of the job: empty when all is well, "interrupted", or what is wrong.
    std::function<void(const std::string&)> done;
};

class Jobs {
  public:
    explicit Jobs(std::function<void(std::function<void()>)> post);
    ~Jobs();

    // Throws UsageError for outputs that cannot be, before anything begins.
    void render(RenderPlan plan, JobEvents events);
    // Keys at most so many frames, spread over the range, and counts what leaks and has holes.
    void find_worst(State state, int most, JobEvents events);
    // Gives up the job that runs; those that wait are dropped.
    void cancel();
    bool running() const { return running_ > 0; }

  private:
    using Job = std::function<void(const Zo::Image::AbortFlag&, const JobEvents&)>;

    void post(std::function<void()> call);
    void start(JobEvents events, Job job);

    std::function<void(std::function<void()>)> post_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    int running_ = 0;
    std::vector<std::function<void(const std::string&)>> waiting_;
    Errands errands_{true};
};

}  // namespace veloxa::viewer
