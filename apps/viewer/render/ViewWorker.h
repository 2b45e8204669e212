// Renders and shades what the window shows, on a thread of its own.
//
// One request counts at a time, the newest. The first picture of one that is overtaken is still finished, so
// that the screen follows a slider that never rests; everything else is aborted. Where much is to be seen and
// keying it takes long, a smaller stand-in comes first, then what is visible, then all of it.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "picture/DisplayTransform.h"
#include "picture/Geometry.h"
#include "picture/Shading.h"
#include "picture/StatusMatte.h"
#include "picture/View.h"
#include "render/NodeRenderer.h"
#include "render/PictureCache.h"
#include "render/PlanePool.h"

namespace veloxa::viewer {

// What one place shows.
struct PaneRequest {
    FramePtr frame;  // null for nothing
    Settings settings;
    DrawnMattes mattes;
    std::string picture;
    View view;
    Geometry geometry;
};

struct ViewRequest {
    std::vector<PaneRequest> panes;  // one or two
    bool difference = false;         // of the two, in the first one's place
    float difference_gain = 1.0f;
    bool counts = false;  // of the first one's matte
    DisplayTransform display;
    std::uint64_t number = 0;  // comes back with what is shown
};

struct ViewResult {
    std::uint64_t number = 0;
    std::size_t pane = 0;
    int frame = 0;
    Shaded shaded;
    Geometry geometry;
    ShownPicture picture;  // what was shaded; of the whole frame once it is `whole`
    bool whole = false;
    std::optional<StatusCounts> counts;
    std::string error;                            // instead of a picture
    std::chrono::steady_clock::time_point began;  // when the request was taken in
};

class ViewWorker {
  public:
    struct Stats {
        std::int64_t shown = 0;
        std::int64_t aborted = 0;
        std::int64_t from_cache = 0;
    };
    using Show = std::function<void(ViewResult)>;

    // `show` is called on the worker's thread. Budgets are in bytes.
    ViewWorker(std::size_t row_budget, std::size_t picture_budget, Show show);
    ~ViewWorker();
    ViewWorker(const ViewWorker&) = delete;
    ViewWorker& operator=(const ViewWorker&) = delete;

    // Any thread; returns at once.
    void submit(ViewRequest request);
    // Ends what is under way; nothing is shown until the next request.
    void stop();
    Stats stats() const;
    const PictureCache& pictures() const { return pictures_; }

  private:
    using Clock = std::chrono::steady_clock;

    // A step on the way to the whole picture.
    struct Pass {
        int scale = 1;
        Zo::Image::Box region;  // of the picture; empty for all of it
    };
    struct Made {
        ShownPicture picture;  // null where the pass was aborted
        bool last = true;
    };

    void run();
    void work(const ViewRequest& request, Clock::time_point began);
    void work_on_difference(const ViewRequest& request, Clock::time_point began);
    // The picture as far as it is to be made in this pass.
    Made make(const ViewRequest& request, std::size_t pane, std::size_t pass);
    std::shared_ptr<const Image> render(std::size_t pane, const Keyed& keyed, const Pass& pass, bool first);
    std::vector<Pass> passes(const PaneRequest& pane) const;
    void show(const ViewRequest& request, std::size_t pane, const Made& made, Clock::time_point began);
    // Throws Error for a picture that nobody opened.
    static void check_inputs(const ViewRequest& request);
    void show_error(const ViewRequest& request, const std::string& error);
    // What follows when the whole picture is there.
    void count(const ViewRequest& request, const Made& made, Clock::time_point began);
    bool overtaken() const;

    const std::size_t row_budget_;
    const Show show_;
    Zo::Image::AbortFlag abort_;

    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::optional<ViewRequest> next_;
    Clock::time_point next_began_;
    bool ending_ = false;
    bool idle_ = true;
    Stats stats_;
    Clock::time_point pass_ends_;   // of the render under way, as far as one can tell
    Clock::duration may_take_{};    // until then where it is overtaken
    Clock::time_point last_shown_;  // or when work began after a rest

    // The worker's own.
    PictureCache pictures_;
    PlanePool planes_;
    std::map<std::pair<std::size_t, int>, std::unique_ptr<NodeRenderer>> renderers_;  // by pane and scale
    std::map<std::pair<int, std::int64_t>, Clock::duration> took_;                    // by scale and pixels
    std::shared_ptr<const Image> counted_;
    StatusCounts counts_;
    std::thread thread_;
};

}  // namespace veloxa::viewer
