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
    bool empty() const { return t <= y; }
};

class RowRanges {
  public:
    // Rows y to t - 1 for `workers` workers. A range is not split below `least` rows.
    RowRanges(int y, int t, int workers, int least);

    // The next band of at most `rows` rows for this worker; empty when nothing is left.
    Band take(int worker, int rows);

  private:
    // Both ends in one word, so that taking and stealing are single atomic steps.
    struct alignas(64) Range {
        std::atomic<std::uint64_t> ends{0};
    };
    bool steal(int thief);

    std::vector<Range> ranges_;
    int least_;
};

}  // namespace Zo::Image
