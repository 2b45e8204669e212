// A thread's way through the graph: the rows that each operator produced lately on this thread.
//
// Every render thread has its own, so fetching a row takes no lock. An operator's window holds as many
// rows as the making of one output row can touch; walking upward through a band therefore computes each
// row once. Rows of one operator lie in a ring by their y.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <vector>

#include "KeptRows.h"
#include "RequestPass.h"
#include "ZoImage/Row.h"

namespace Zo::Image {

class Iop;
class AbortFlag;
class CachedRender;

// What all the threads of one render share.
struct RenderState {
    const AbortFlag* abort = nullptr;
    std::atomic<bool> stop{false};  // an exception or the flag ended the render
    bool measure_time = false;
};

class RowPath {
  public:
    RowPath(const RequestPass& pass, const CachedRender& cached, RenderState& state);

    // The calling thread's; null outside a render.
    static RowPath* current();

    // Once true it stays so, whatever becomes of the flag: what was left undone then must not pass for done.
    bool aborted() const;

    // Fills `out` over its whole span with channels of row y of op, all inside info().channels, y inside
    // the box; see Iop::get.
    void fetch(Iop& op, int y, ChannelSet channels, Row& out);
    // The same without a path: computes the row for this call alone.
    static void fetch_alone(Iop& op, int y, ChannelSet channels, Row& out);

    struct Work {
        std::int64_t rows = 0;
        std::chrono::nanoseconds time{0};
    };
    const Work& work(std::size_t slot) const { return windows_[slot].work; }

  private:
    struct Entry {
        bool used = false;
        int y = 0;
        Row row;
    };
    struct Window {
        std::vector<Entry> ring;

        Entry& entry_for(int y) {
            const int size = static_cast<int>(ring.size());
            if (size == 1) return ring.front();
            const int place = y % size;
            return ring[static_cast<std::size_t>(place < 0 ? place + size : place)];
        }

        KeptRows* kept = nullptr;  // null when none are kept of this operator
        Work work;
    };

    void compute(Iop& op, Window& window, int y, ChannelSet channels, Row& row);
    void compute_and_keep(Iop& op, Window& window, int y, ChannelSet channels, Row& row);

    RenderState& state_;
    std::uint64_t pass_;
    std::vector<Window> windows_;
    std::chrono::nanoseconds inner_time_{0};  // spent in operators called by the one that is measured
};

}  // namespace Zo::Image
