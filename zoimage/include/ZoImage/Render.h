// Renders an operator: cuts the frame into bands of rows and lets worker threads walk them.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ZoImage/Box.h"
#include "ZoImage/ChannelSet.h"

namespace Zo::Image {

class Iop;
class Row;
class RowCache;

// Stops renders. raise() may be called from any thread and from a signal handler; it stays raised until
// cleared.
class AbortFlag {
  public:
    void raise() noexcept { raised_.store(true, std::memory_order_relaxed); }
    void clear() noexcept { raised_.store(false, std::memory_order_relaxed); }
    bool raised() const noexcept { return raised_.load(std::memory_order_relaxed); }

  private:
    std::atomic<bool> raised_{false};
    static_assert(std::atomic<bool>::is_always_lock_free);
};

// What one operator did in one render.
struct OpStats {
    const Iop* op = nullptr;
    std::int64_t rows = 0;             // engine calls; rows from a cache are not counted
    std::chrono::nanoseconds time{0};  // in engine, without the operators that it called; all threads added
};

// Threads that somebody else owns, such as the program that a plug-in runs in.
class ThreadSource {
  public:
    virtual ~ThreadSource() = default;
    // How many jobs can run at once, the caller of run() counted; taken for 1 when it is less.
    virtual int threads() const = 0;
    // Calls job(0) to job(count - 1), each on whatever thread, at once or one after another, and returns when
    // all that were called have returned. Jobs may be left out when threads lack: the renderer then does them
    // itself. No job throws, calls run() or waits for one that has not begun. Must not throw.
    virtual void run(int count, const std::function<void(int)>& job) = 0;
};

class Renderer {
  public:
    // Receives every finished row of the region, from the worker threads, in no particular order.
    using Sink = std::function<void(int y, const Row& row)>;

    // `threads` of 0 takes one per processor. The flag, if given, must outlive the renderer.
    explicit Renderer(int threads = 0, const AbortFlag* abort = nullptr);
    // Starts no threads. The source must outlive the renderer; several renderers may use one, if it allows
    // its run() from several threads.
    explicit Renderer(ThreadSource& threads, const AbortFlag* abort = nullptr);
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    int threads() const;
    // Measures time per operator from the next render on; counting rows is always on.
    void measure_time(bool on);
    // Keeps rows in a cache from the next render on, and takes from it what still holds; null for none. The
    // cache outlives the renderer, or its use of it.
    void use_cache(RowCache* cache);

    // Validates and requests `root`, then computes every row of the region. Returns false when it was
    // aborted, after all workers stopped. An exception from an engine or the sink stops the render and is
    // thrown here. One render at a time per renderer, and per graph.
    bool render(Iop& root, const Box& region, ChannelSet channels, const Sink& sink);

    // The last render's operators, in the order they were first requested, the root first.
    const std::vector<OpStats>& stats() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace Zo::Image
