#include <cstddef>
#include <cstdint>

#include "screen/NearestClearKernel.h"

namespace LANES {

namespace {

constexpr int kBlock = 16;

template <class Steps>
Steps size_of(Steps offset) {
    return static_cast<Steps>(offset < 0 ? -offset : offset);
}

bool any_clear(const float* clear) {
    int count = 0;
    for (int i = 0; i < kBlock; ++i) count |= clear[i] != 0.0f ? 1 : 0;
    return count != 0;
}
bool all_clear(const float* clear) {
    int count = 1;
    for (int i = 0; i < kBlock; ++i) count &= clear[i] != 0.0f ? 1 : 0;
    return count != 0;
}

// Runs from the left, then from the right; blocks that are clear as a whole, or not at all, are common.
template <class Steps>
bool find(const float* clear, std::ptrdiff_t width, Steps* offset) {
    std::ptrdiff_t run = kNoSteps<Steps>;
    bool any = false;
    std::ptrdiff_t x = 0;
    for (; x + kBlock <= width; x += kBlock) {
        if (!any_clear(clear + x)) {
            // Without a clear pixel to the left the run stays as it is.
            const Steps step = any ? 1 : 0;
            Steps reached = static_cast<Steps>(run);
            for (int i = 0; i < kBlock; ++i) offset[x + i] = static_cast<Steps>(-(reached + step * (i + 1)));
            run += step * kBlock;
        } else if (all_clear(clear + x)) {
            for (int i = 0; i < kBlock; ++i) offset[x + i] = 0;
            run = 0;
            any = true;
        } else {
            for (int i = 0; i < kBlock; ++i) {
                const bool here = clear[x + i] != 0.0f;
                any |= here;
                run = here ? 0 : run + (any ? 1 : 0);
                offset[x + i] = static_cast<Steps>(-run);
            }
        }
    }
    for (; x < width; ++x) {
        const bool here = clear[x] != 0.0f;
        any |= here;
        run = here ? 0 : run + (any ? 1 : 0);
        offset[x] = static_cast<Steps>(-run);
    }
    if (!any) {
        for (x = 0; x < width; ++x) offset[x] = kNoSteps<Steps>;
        return false;
    }

    // Right of the last clear pixel nothing changes.
    x = width - run - 1;
    run = 0;
    while (x > 0) {
        if (x >= kBlock && -offset[x - 1] >= kBlock) {
            const Steps reached = static_cast<Steps>(run);
            x -= kBlock;
            for (int i = 0; i < kBlock; ++i) {
                const Steps left = offset[x + i];
                const Steps right = static_cast<Steps>(reached + kBlock - i);
                offset[x + i] = right < -left ? right : left;
            }
            run += kBlock;
        } else {
            --x;
            const Steps left = offset[x];
            run = left == 0 ? 0 : run + 1;
            offset[x] = run < -left ? static_cast<Steps>(run) : left;
        }
    }
    return true;
}

template <class Steps>
void sum_up(const WalkTile<Steps>& tile) {
    Steps up_distance[kWalkColumns];
    Steps up_offset[kWalkColumns];
    Steps down_distance[kWalkColumns];
    Steps down_offset[kWalkColumns];
    for (int i = 0; i < kWalkColumns; ++i) {
        up_distance[i] = down_distance[i] = tile.farthest;
        up_offset[i] = down_offset[i] = 0;
    }
    const int n = tile.columns;
    for (int y = 0; y < tile.rows; ++y) {
        const Steps* const row = tile.steps + y * tile.width;
        for (int i = 0; i < n; ++i) {
            const Steps offset = row[i];
            const Steps own = size_of(offset);
            const Steps held = static_cast<Steps>(up_distance[i] + 1);
            up_distance[i] = own < held ? own : held;
            up_offset[i] = own < held ? offset : up_offset[i];
            // The walk down meets this row before those below, so here the later wins a tie.
            const Steps from_first = static_cast<Steps>(own + y);
            const Steps met = down_distance[i];
            down_distance[i] = from_first <= met ? from_first : met;
            down_offset[i] = from_first <= met ? offset : down_offset[i];
        }
    }
    for (int i = 0; i < n; ++i) {
        tile.up.distance[i] = up_distance[i];
        tile.up.offset[i] = up_offset[i];
        tile.down.distance[i] = down_distance[i];
        tile.down.offset[i] = down_offset[i];
    }
}

template <class Steps>
struct Columns {
    Steps distance[kWalkColumns];
    Steps offset[kWalkColumns];
};

// One row further away; then what the row itself has, if that is strictly nearer.
template <class Steps>
[[gnu::noinline]] void meet_row(Columns<Steps>& met, const Steps* __restrict row, int n) {
    for (int i = 0; i < n; ++i) {
        const Steps offset = row[i];
        const Steps held_offset = met.offset[i];
        const Steps own = size_of(offset);
        const Steps held = static_cast<Steps>(met.distance[i] + 1);
        met.distance[i] = own < held ? own : held;
        met.offset[i] = own < held ? offset : held_offset;
    }
}

// What both walks have met, the walk down's unless the other's is strictly nearer, and how many rows up it
// is. Returns whether any is not here.
template <class Steps>
[[gnu::noinline]] bool take_nearer(const Columns<Steps>& below, const Columns<Steps>& above,
                                   Columns<Steps>& nearest, Steps* __restrict rows, int n) {
    Steps any = 0;
    for (int i = 0; i < n; ++i) {
        const Steps up = below.distance[i];
        const Steps down = above.distance[i];
        const Steps up_offset = below.offset[i];
        const Steps down_offset = above.offset[i];
        const Steps distance = up < down ? up : down;
        const Steps offset = up < down ? up_offset : down_offset;
        const int is_below = up < down ? 1 : 0;
        // Negated where it is below.
        rows[i] = static_cast<Steps>(((distance - size_of(offset)) ^ -is_below) + is_below);
        nearest.distance[i] = distance;
        nearest.offset[i] = offset;
        any = static_cast<Steps>(any | distance);
    }
    return any != 0;
}

template <class Steps>
void walk(const WalkTile<Steps>& tile) {
    const int n = tile.columns;
    Columns<Steps> below[kWalkRows];
    Columns<Steps> met;
    for (int i = 0; i < n; ++i) {
        met.distance[i] = tile.up.distance[i];
        met.offset[i] = tile.up.offset[i];
    }
    for (int y = 0; y < tile.rows; ++y) {
        meet_row(met, tile.steps + y * tile.width, n);
        for (int i = 0; i < n; ++i) {
            below[y].distance[i] = met.distance[i];
            below[y].offset[i] = met.offset[i];
        }
    }
    for (int i = 0; i < n; ++i) {
        met.distance[i] = tile.down.distance[i];
        met.offset[i] = tile.down.offset[i];
    }
    for (int y = tile.rows - 1; y >= 0; --y) {
        Steps* const row = tile.steps + y * tile.width;
        meet_row(met, row, n);
        Columns<Steps> nearest;
        Steps rows[kWalkColumns];
        const bool any = take_nearer(below[y], met, nearest, rows, n);
        for (int i = 0; i < n; ++i) row[i] = nearest.distance[i];
        if (!any) continue;
        // Clear pixels are not written, not even with what they hold: other threads may read them.
        for (int i = 0; i < n; ++i) {
            if (nearest.distance[i] == 0) continue;
            const std::ptrdiff_t at = y * tile.width + i;
            const std::ptrdiff_t from = at + rows[i] * tile.width + nearest.offset[i];
            for (int k = 0; k < 3; ++k) tile.planes[k][at] = tile.planes[k][from];
        }
    }
}

}  // namespace

bool find_in_row_16(const float* clear, std::ptrdiff_t width, std::int16_t* offset) {
    return find(clear, width, offset);
}
bool find_in_row_32(const float* clear, std::ptrdiff_t width, std::int32_t* offset) {
    return find(clear, width, offset);
}
void sum_up_walks_16(const WalkTile<std::int16_t>& tile) {
    sum_up(tile);
}
void sum_up_walks_32(const WalkTile<std::int32_t>& tile) {
    sum_up(tile);
}
void walk_and_fill_16(const WalkTile<std::int16_t>& tile) {
    walk(tile);
}
void walk_and_fill_32(const WalkTile<std::int32_t>& tile) {
    walk(tile);
}

}  // namespace LANES
