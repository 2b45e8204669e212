#include "ZoImage/Render.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>

#include "BufferPool.h"
#include "CachedRender.h"
#include "RequestPass.h"
#include "RowPath.h"
#include "RowRanges.h"
#include "ThisThread.h"
#include "WorkerPool.h"
#include "ZoImage/Iop.h"

namespace Zo::Image {

namespace {

// At the seam of two ranges the rows that an operator looks up and down are made twice. Ranges this many
// times taller than that keep it to a few per cent.
constexpr int kRowsPerSeam = 8;
constexpr int kLeastRange = 8;
constexpr int kMostSeparation = 128;

int least_rows_of_a_range(const RequestPass& pass) {
    int tallest = 1;
    for (const Iop* op : pass.ops()) tallest = std::max(tallest, RequestPass::rows_in_use(*op));
    return std::clamp((tallest - 1) * kRowsPerSeam, kLeastRange, kMostSeparation);
}

// Runs every job exactly once, whatever the source does.
void run_all(ThreadSource& source, int count, const std::function<void(int)>& job) {
    if (count == 1) {
        job(0);
        return;
    }
    std::vector<std::atomic<bool>> begun(static_cast<std::size_t>(count));
    const auto once = [&](int index) {
        if (index < 0 || index >= count || begun[static_cast<std::size_t>(index)].exchange(true)) return;
        job(index);
    };
    source.run(count, once);
    for (int index = 0; index < count; ++index) once(index);
}

// Plans the rendering of a region: the whole frame tells how many rows are in use at once, the region
// which spans and channels are wanted.
RequestPass plan(Iop& root, const Box& region, ChannelSet channels) {
    root.validate(true);
    const Box frame = root.info().box.empty() ? region : root.info().box;
    RequestPass whole(root, frame, channels);
    whole.note_rows_in_use(frame);
    if (region == frame) return whole;
    return {root, region, channels};
}

}  // namespace

struct Renderer::Impl {
    Impl(std::unique_ptr<WorkerPool> pool, ThreadSource& threads, const AbortFlag* flag)
        : own(std::move(pool)), source(threads), abort(flag) {}

    std::unique_ptr<WorkerPool> own;  // null when the threads are somebody else's
    ThreadSource& source;
    const AbortFlag* abort;
    bool measure_time = false;
    RowCache* cache = nullptr;
    BufferPools pools;
    PlaneStore planes{std::numeric_limits<std::size_t>::max()};
    std::vector<OpStats> stats;
};

Renderer::Renderer(int threads, const AbortFlag* abort) {
    const int processors = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    auto own = std::make_unique<WorkerPool>(threads > 0 ? threads : processors);
    ThreadSource& source = *own;
    impl_ = std::make_unique<Impl>(std::move(own), source, abort);
}

Renderer::Renderer(ThreadSource& threads, const AbortFlag* abort)
    : impl_(std::make_unique<Impl>(nullptr, threads, abort)) {}

Renderer::~Renderer() = default;

int Renderer::threads() const {
    return std::max(1, impl_->source.threads());
}

void Renderer::measure_time(bool on) {
    impl_->measure_time = on;
}

void Renderer::use_cache(RowCache* cache) {
    impl_->cache = cache;
}

const std::vector<OpStats>& Renderer::stats() const {
    return impl_->stats;
}

bool Renderer::render(Iop& root, const Box& region, ChannelSet channels, const Sink& sink) {
    impl_->stats.clear();
    if (region.empty()) return true;
    const RequestPass pass = plan(root, region, channels);
    CachedRender cached(impl_->cache, impl_->planes, pass);

    RenderState state;
    state.abort = impl_->abort;
    state.measure_time = impl_->measure_time || cached.wants_times();

    const int least = least_rows_of_a_range(pass);
    const int workers = std::clamp(region.height() / least, 1, threads());
    RowRanges ranges(region.y, region.t, workers, 2 * least);

    std::mutex mutex;  // guards the results below, which each worker adds to once
    std::vector<OpStats> stats(pass.ops().size());
    std::exception_ptr failure;
    bool complete = true;

    const auto walk = [&](int worker) {
        const BufferPools::Lease buffers(impl_->pools);
        RowPath path(pass, cached, state);
        const Scoped walked(this_thread().path, &path);
        const bool finished = ranges.walk(worker, [&](int y) {
            Row row(region.x, region.r);
            row.get(root, y, channels);
            if (path.aborted()) return false;
            sink(y, row);
            return true;
        });
        const std::lock_guard hold(mutex);
        complete = complete && finished;
        for (std::size_t slot = 0; slot < stats.size(); ++slot) {
            stats[slot].rows += path.work(slot).rows;
            stats[slot].time += path.work(slot).time;
        }
    };
    // Not even a lack of memory may leave a job as an exception: the thread may be anybody's.
    const auto work = [&](int worker) {
        try {
            walk(worker);
        } catch (...) {
            state.stop = true;
            const std::lock_guard hold(mutex);
            complete = false;
            if (!failure) failure = std::current_exception();
        }
    };
    run_all(impl_->source, workers, work);

    for (std::size_t slot = 0; slot < stats.size(); ++slot) stats[slot].op = pass.ops()[slot];
    cached.learn(stats, complete);
    impl_->stats = std::move(stats);
    if (failure) std::rethrow_exception(failure);
    return complete;
}

}  // namespace Zo::Image
