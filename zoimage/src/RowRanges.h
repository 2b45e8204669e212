// Hands out the rows of a frame to workers.
//
// Every worker starts with a range of its own and walks it upward in bands, so the rows that it keeps
// stay useful. A worker that has finished takes the upper half of what another one still has to do.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

namespace Zo::Image {

struct Band {
    int y;
    int t;
    int rows() const { return t - y; }
    bool empty() const { return t <= y; }
};

class RowRanges {
  public:
    // Rows y to t - 1 for `workers` workers. A range is not split below `least` rows.
    RowRanges(int y, int t, int workers, int least);

    // Calls `row` with each row that falls to this worker, band after band, until nothing is left or it
    // returns false, which this then does too.
    template <class MakeRow>
    bool walk(int worker, MakeRow&& row) {
        for (Band band = take(worker); !band.empty(); band = take(worker)) {
            for (int y = band.y; y < band.t; ++y) {
                if (!row(y)) return false;
            }
        }
        return true;
    }

  private:
    // Both ends in one word, so that taking and stealing are single atomic steps.
    struct alignas(64) Range {
        std::atomic<Band> left{Band{0, 0}};
        static_assert(std::atomic<Band>::is_always_lock_free);
    };
    // The next band for this worker; empty when nothing is left.
    Band take(int worker);
    bool steal(int thief);

    std::vector<Range> ranges_;
    int least_;
};

}  // namespace Zo::Image
