#include "screen/NearestClear.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>

namespace {

constexpr int kRowGrain = 16;
constexpr int kColumns = 64;

constexpr int kMostSide = 1 << 28;
// Stands for the column of a clear pixel where a row has none: further than any distance can grow.
constexpr std::int32_t kNowhere = -(1 << 30);

// Per pixel of a row the column of the nearest clear pixel of that row; from equally near ones the left.
bool find_in_row(const float* clear, int width, std::int32_t* nearest) {
    std::int32_t last = kNowhere;
    for (std::int32_t x = 0; x < width; ++x) {
        last = clear[x] != 0.0f ? x : last;
        nearest[x] = last;
    }
    if (last == kNowhere) return false;
    std::int32_t next = last;  // right of the last clear pixel nothing changes
    for (std::int32_t x = last; x >= 0; --x) {
        const std::int32_t left = nearest[x];
        next = left == x ? x : next;
        nearest[x] = next - x < x - left ? next : left;
    }
    return true;
}

// The best that some neighbouring columns met so far on the walk up or down.
struct Columns {
    std::array<std::int32_t, kColumns> distance;
    std::array<std::uint32_t, kColumns> source;
};

// One row further away; then what the row itself has, if that is strictly nearer.
void meet_row(Columns& best, const std::int32_t* nearest, std::int32_t x, int count, std::uint32_t row) {
    for (int i = 0; i < count; ++i) {
        const std::int32_t distance = std::abs(x + i - nearest[i]);
        const std::int32_t held = best.distance[static_cast<std::size_t>(i)] + 1;
        const std::uint32_t source = row + static_cast<std::uint32_t>(nearest[i]);
        const std::uint32_t held_source = best.source[static_cast<std::size_t>(i)];
        best.distance[static_cast<std::size_t>(i)] = distance < held ? distance : held;
        best.source[static_cast<std::size_t>(i)] = distance < held ? source : held_source;
    }
}

// What the walk up found for the row, if that is strictly nearer.
void meet_map(Columns& best, const std::int32_t* distance, const std::uint32_t* source, int count) {
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const bool nearer = distance[i] < best.distance[at];
        best.distance[at] = nearer ? distance[i] : best.distance[at];
        best.source[at] = nearer ? source[i] : best.source[at];
    }
}

}  // namespace

// A row's runs from the left and from the right depend on that row alone: before its first clear pixel a
// run is longer than width + height, which a column that has met any clear pixel never exceeds. So runs
// are found for all rows at once, and the walks then need columns only.
NearestClear find_nearest_clear(int width, int height, const float* clear, const ParallelLoop& loop) {
    const auto stride = static_cast<std::size_t>(width);
    const std::size_t pixels = stride * static_cast<std::size_t>(height);
    if (width > kMostSide || height > kMostSide || pixels > std::size_t{1} << 32U) {
        throw std::length_error("frame too large for the smart interpolation");
    }
    NearestClear found;
    found.distance = std::make_unique_for_overwrite<std::int32_t[]>(pixels);
    const auto nearest = std::make_unique_for_overwrite<std::int32_t[]>(pixels);

    std::atomic<bool> any{false};
    loop(0, height, kRowGrain, [&](int begin, int end) {
        bool here = false;
        for (int y = begin; y < end; ++y) {
            const std::size_t at = static_cast<std::size_t>(y) * stride;
            here |= find_in_row(clear + at, width, nearest.get() + at);
        }
        if (here) any.store(true, std::memory_order_relaxed);
    });
    found.any = any.load(std::memory_order_relaxed);
    const std::int32_t farthest = width + height;
    if (!found.any) {
        std::fill_n(found.distance.get(), pixels, farthest);
        return found;
    }
    found.source = std::make_unique_for_overwrite<std::uint32_t[]>(pixels);

    loop(0, width, kColumns, [&](int begin, int end) {
        const int count = end - begin;
        Columns best;
        best.distance.fill(farthest);
        best.source.fill(0);
        const auto at = [&](int y) {
            return static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(begin);
        };
        const auto row = [&](int y) {
            return static_cast<std::uint32_t>(static_cast<std::size_t>(y) * stride);
        };
        for (int y = 0; y < height; ++y) {
            meet_row(best, nearest.get() + at(y), begin, count, row(y));
            for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
                found.distance[at(y) + i] = std::min(best.distance[i], farthest);
                found.source[at(y) + i] = best.source[i];
            }
        }
        for (int y = height - 1; y >= 0; --y) {
            meet_row(best, nearest.get() + at(y), begin, count, row(y));
            meet_map(best, found.distance.get() + at(y), found.source.get() + at(y), count);
            std::copy_n(best.distance.data(), count, found.distance.get() + at(y));
            std::copy_n(best.source.data(), count, found.source.get() + at(y));
        }
    });
    return found;
}
