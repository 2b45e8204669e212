#include "render/ViewWorker.h"

#include <algorithm>
#include <utility>

#include "render/Pictures.h"
#include "render/Priority.h"
#include "render/Proxy.h"
#include "shot/Errors.h"

namespace veloxa::viewer {

using namespace Zo::Image;
using namespace std::chrono_literals;

namespace {

// A render that is overtaken is let end if it is so near to it,
constexpr auto kNearlyDone = 8ms;
// if it is its request's first and not further from it than this, or if nothing new was to be seen for so
// long.
constexpr auto kPatience = 250ms;

// A stand-in comes first where more pixels than these are seen, unless keying them took no longer than that.
constexpr std::int64_t kLarge = 1'200'000;
constexpr auto kSoon = 25ms;
constexpr int kLeastProxy = 8;

constexpr int kShadingThreads = 2;

std::int64_t area_of(const Box& box) {
    return box.empty() ? 0 : std::int64_t{box.width()} * box.height();
}

// What is keyed where both of a mode's ends show.
Keyed keyed_of(const PaneRequest& pane) {
    return {pane.frame, pane.settings, pane.mattes, rendered_as(pane.picture)};
}

}  // namespace

ViewWorker::ViewWorker(std::size_t row_budget, std::size_t picture_budget, Show show)
    : row_budget_(row_budget),
      show_(std::move(show)),
      pictures_(picture_budget),
      thread_([this] { run(); }) {}

ViewWorker::~ViewWorker() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        abort_.raise();
    }
    wake_.notify_all();
    thread_.join();
}

void ViewWorker::submit(ViewRequest request) {
    {
        const std::lock_guard lock(mutex_);
        const auto now = Clock::now();
        if (!next_) next_began_ = now;
        if (std::exchange(idle_, false)) last_shown_ = now;
        next_ = std::move(request);
        const bool waits_long = now - last_shown_ > kPatience;
        if (pass_ends_ - now > may_take_ && !waits_long) abort_.raise();
    }
    wake_.notify_all();
}

void ViewWorker::stop() {
    const std::lock_guard lock(mutex_);
    next_.reset();
    abort_.raise();
}

ViewWorker::Stats ViewWorker::stats() const {
    const std::lock_guard lock(mutex_);
    return stats_;
}

bool ViewWorker::overtaken() const {
    const std::lock_guard lock(mutex_);
    return ending_ || next_ || abort_.raised();
}

void ViewWorker::run() {
    step_back();
    for (;;) {
        ViewRequest request;
        Clock::time_point began;
        {
            std::unique_lock lock(mutex_);
            idle_ = !next_;
            wake_.wait(lock, [this] { return ending_ || next_; });
            if (ending_) return;
            request = *std::exchange(next_, std::nullopt);
            began = next_began_;
            abort_.clear();
        }
        try {
            if (request.difference && request.panes.size() == 2) {
                work_on_difference(request, began);
            } else {
                work(request, began);
            }
        } catch (const std::exception& error) {
            show_error(request, error.what());
        }
    }
}

void ViewWorker::work(const ViewRequest& request, Clock::time_point began) {
    if (request.panes.size() < 2) {
        std::erase_if(renderers_, [](const auto& entry) { return entry.first.first > 0; });
    }
    std::vector<Made> made(request.panes.size(), Made{{}, false});
    for (std::size_t pass = 0; std::ranges::any_of(made, [](const Made& m) { return !m.last; }); ++pass) {
        for (std::size_t n = 0; n < made.size(); ++n) {
            if (made[n].last) continue;
            made[n] = make(request, n, pass);
            if (made[n].picture.image) show(request, n, made[n], began);
            if (overtaken()) return;
        }
    }
    if (!made.empty()) count(request, made.front(), began);
    // Behind what can be shown, since that takes messages away.
    check_inputs(request);
}

void ViewWorker::check_inputs(const ViewRequest& request) {
    for (const PaneRequest& pane : request.panes) {
        const int input = input_of(pane.picture);
        if (!pane.frame || input < 0 || pane.frame->inputs[static_cast<std::size_t>(input)].image) continue;
        throw Error("there is no " + pane.picture);
    }
}

void ViewWorker::work_on_difference(const ViewRequest& request, Clock::time_point began) {
    for (std::size_t pass = 0;; ++pass) {
        const Made a = make(request, 0, pass);
        if (overtaken()) return;
        const Made b = make(request, 1, pass);
        if (overtaken()) return;
        if (!a.picture.image || !b.picture.image) return check_inputs(request);
        const bool alike = a.picture.scale == b.picture.scale;
        if (!alike && !(a.last && b.last)) continue;
        auto image = std::make_shared<const Image>(
            difference(*a.picture.image, *b.picture.image, request.difference_gain));
        const bool last = a.last && b.last;
        show(request, 0, {{std::move(image), a.picture.scale, a.picture.frame}, last}, began);
        if (last || overtaken()) return;
    }
}

// Where the frame is larger than what is seen of it, what is seen comes first.
std::vector<ViewWorker::Pass> ViewWorker::passes(const PaneRequest& pane) const {
    const Info& info = pane.frame->inputs[kFg].image->info;
    Box whole = info.box;
    whole.merge(info.format.box);
    const Box visible = pane.geometry.visible(whole);
    std::vector<Pass> passes;
    const bool all = area_of(visible) * 4 > area_of(whole) * 3;
    const auto took = took_.find({1, area_of(all ? whole : visible)});
    if (area_of(visible) > kLarge && (took == took_.end() || took->second > kSoon)) {
        const double reduced = 1.0 / pane.geometry.zoom;
        passes.push_back({std::clamp(static_cast<int>(std::min(reduced, 1e3)), 2, kLeastProxy), visible});
    }
    if (!visible.empty() && !all) passes.push_back({1, visible});
    passes.push_back({1, {}});
    return passes;
}

ViewWorker::Made ViewWorker::make(const ViewRequest& request, std::size_t n, std::size_t pass) {
    const PaneRequest& pane = request.panes[n];
    if (!pane.frame) return {};
    if (!pane.frame->error.empty()) throw Error(pane.frame->error);
    const Box& frame = pane.frame->inputs[kFg].image->info.format.box;
    if (const int input = input_of(pane.picture); input >= 0) {
        return {{pane.frame->inputs[static_cast<std::size_t>(input)].image, 1.0, frame}, true};
    }
    const Keyed keyed = keyed_of(pane);
    const Hash identity = keyed.identity();
    if (auto kept = pictures_.find(identity)) {
        const std::lock_guard lock(mutex_);
        ++stats_.from_cache;
        return {{std::move(kept), 1.0, frame}, true};
    }
    const std::vector<Pass> all = passes(pane);
    const Pass& now = all[std::min(pass, all.size() - 1)];
    const bool last = pass + 1 >= all.size();
    auto image = render(n, keyed, now, pass == 0);
    if (image && last) pictures_.keep(identity, pane.frame->identity, image);
    return {{std::move(image), static_cast<double>(now.scale), frame}, last};
}

std::shared_ptr<const Image> ViewWorker::render(std::size_t pane, const Keyed& keyed, const Pass& pass,
                                                bool first) {
    auto& renderer = renderers_[{pane, pass.scale}];
    if (!renderer) {
        const auto budget = row_budget_ / static_cast<std::size_t>(pass.scale * pass.scale);
        renderer = std::make_unique<NodeRenderer>(pass.scale, budget, planes_, abort_);
    }
    const auto began = Clock::now();
    Box region = renderer->prepare(keyed);
    if (!pass.region.empty()) region.intersect(shrunk(pass.region, pass.scale));
    if (region.empty()) return nullptr;
    Clock::duration& took = took_[{pass.scale, area_of(region)}];
    {
        const std::lock_guard lock(mutex_);
        pass_ends_ = took > Clock::duration::zero() ? began + took : Clock::time_point::max();
        may_take_ = first ? kPatience : kNearlyDone;
    }
    auto image = renderer->render(region);
    const std::lock_guard lock(mutex_);
    pass_ends_ = {};
    if (image) {
        took = Clock::now() - began;
    } else {
        ++stats_.aborted;
    }
    return image;
}

void ViewWorker::show(const ViewRequest& request, std::size_t n, const Made& made, Clock::time_point began) {
    const PaneRequest& pane = request.panes[n];
    View view = view_of(pane.picture, pane.view);
    if (view.behind == Behind::kPicture) {
        view.behind_picture = pane.frame->inputs[kBg].image;
    }
    ViewResult result;
    result.number = request.number;
    result.pane = n;
    result.frame = pane.frame->number;
    result.geometry = pane.geometry;
    result.picture = made.picture;
    result.whole = made.last;
    result.began = began;
    const DisplayTransform& display = is_stage(pane.picture) ? DisplayTransform() : request.display;
    result.shaded = shade(made.picture, view, display, pane.geometry, kShadingThreads);
    {
        const std::lock_guard lock(mutex_);
        ++stats_.shown;
        last_shown_ = Clock::now();
    }
    show_(std::move(result));
}

void ViewWorker::show_error(const ViewRequest& request, const std::string& error) {
    ViewResult result;
    result.number = request.number;
    if (const FramePtr& frame = request.panes.front().frame) result.frame = frame->number;
    result.error = error;
    show_(std::move(result));
}

void ViewWorker::count(const ViewRequest& request, const Made& made, Clock::time_point began) {
    if (!request.counts || !made.picture.image || request.panes.front().frame == nullptr) return;
    if (counted_ != made.picture.image) {
        counts_ = status_counts(*made.picture.image);
        counted_ = made.picture.image;
    }
    if (overtaken()) return;
    ViewResult result;
    result.number = request.number;
    result.frame = request.panes.front().frame->number;
    result.geometry = request.panes.front().geometry;
    result.picture = made.picture;
    result.whole = true;
    result.counts = counts_;
    result.began = began;
    show_(std::move(result));
}

}  // namespace veloxa::viewer
