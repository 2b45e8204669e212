#include "screen/NearestClear.h"

#include <algorithm>
#include <memory>

namespace {

constexpr int kTilesAtOnce = 16;

template <class Steps>
struct Kernels {
    static constexpr const auto& find_in_row = find_in_row_16;
    static constexpr const auto& sum_up_walks = sum_up_walks_16;
    static constexpr const auto& walk_and_fill = walk_and_fill_16;
};
template <>
struct Kernels<std::int32_t> {
    static constexpr const auto& find_in_row = find_in_row_32;
    static constexpr const auto& sum_up_walks = sum_up_walks_32;
    static constexpr const auto& walk_and_fill = walk_and_fill_32;
};

std::size_t product(int a, int b) {
    return static_cast<std::size_t>(a) * static_cast<std::size_t>(b);
}

int rounded_up(int a, int b) {
    return a / b + (a % b != 0 ? 1 : 0);
}

}  // namespace

// Per band and column what the two walks have met.
template <class Steps>
struct NearestClear<Steps>::Carried {
    explicit Carried(std::size_t count)
        : steps(std::make_unique_for_overwrite<Steps[]>(4 * count)),
          up{steps.get(), steps.get() + count},
          down{steps.get() + 2 * count, steps.get() + 3 * count} {}

    std::unique_ptr<Steps[]> steps;
    Met<Steps> up;
    Met<Steps> down;
};

namespace {

// Exchanges what a walk meets in a band for what it brings there, and takes the band's share along; what it
// holds wins ties.
template <class Steps>
void carry_over(Met<Steps>& carried, std::size_t at, int rows, Steps farthest, Steps& distance,
                Steps& offset) {
    const auto held = static_cast<Steps>(std::min(distance + rows, int{farthest}));
    const bool nearer = carried.distance[at] < held;
    const Steps next_distance = nearer ? carried.distance[at] : held;
    const Steps next_offset = nearer ? carried.offset[at] : offset;
    carried.distance[at] = distance;
    carried.offset[at] = offset;
    distance = next_distance;
    offset = next_offset;
}

}  // namespace

template <class Steps>
NearestClear<Steps>::NearestClear(int width, int height)
    : width_(width), height_(height), steps_(product(width, height)) {}

template <class Steps>
void NearestClear<Steps>::add_row(int y, const float* clear) {
    if (Kernels<Steps>::find_in_row(clear, width_, steps_.data() + product(y, width_))) {
        any_.store(true, std::memory_order_relaxed);
    }
}

template <class Steps>
void NearestClear<Steps>::fill_backing(const std::array<float*, 3>& planes,
                                       const std::array<float, 3>& backing, const ParallelLoop& loop) {
    loop(0, height_, kWalkRows, [&](int begin, int end) {
        const std::size_t at = product(begin, width_);
        const std::size_t count = product(end - begin, width_);
        std::fill_n(steps_.data() + at, count, static_cast<Steps>(width_ + height_));
        for (std::size_t k = 0; k < 3; ++k) std::fill_n(planes[k] + at, count, backing[k]);
    });
}

template <class Steps>
void NearestClear<Steps>::fill(const std::array<float*, 3>& planes, const std::array<float, 3>& backing,
                               const ParallelLoop& loop) {
    if (!any_.load(std::memory_order_relaxed)) {
        fill_backing(planes, backing, loop);
        return;
    }
    const int bands = rounded_up(height_, kWalkRows);
    const int strips = rounded_up(width_, kWalkColumns);
    const auto farthest = static_cast<Steps>(width_ + height_);
    Carried carried(product(bands, width_));

    const auto for_tiles = [&](const auto& kernel) {
        loop(0, bands * strips, kTilesAtOnce, [&](int begin, int end) {
            for (int t = begin; t < end; ++t) {
                const int band = t / strips;
                const int x = t % strips * kWalkColumns;
                const int y = band * kWalkRows;
                const std::size_t at = product(y, width_) + static_cast<std::size_t>(x);
                const std::size_t at_carried = product(band, width_) + static_cast<std::size_t>(x);
                kernel(WalkTile<Steps>{
                    std::min(kWalkColumns, width_ - x),
                    std::min(kWalkRows, height_ - y),
                    width_,
                    farthest,
                    steps_.data() + at,
                    {carried.up.distance + at_carried, carried.up.offset + at_carried},
                    {carried.down.distance + at_carried, carried.down.offset + at_carried},
                    {planes[0] + at, planes[1] + at, planes[2] + at},
                });
            }
        });
    };
    for_tiles(Kernels<Steps>::sum_up_walks);
    loop(0, width_, kWalkColumns, [&](int begin, int end) {
        for (int x = begin; x < end; ++x) {
            const auto column = [&](bool up) {
                Steps distance = farthest;
                Steps offset = 0;
                for (int i = 0; i < bands; ++i) {
                    const int band = up ? i : bands - 1 - i;
                    carry_over(up ? carried.up : carried.down,
                               product(band, width_) + static_cast<std::size_t>(x),
                               std::min(kWalkRows, height_ - band * kWalkRows), farthest, distance, offset);
                }
            };
            column(true);
            column(false);
        }
    });
    for_tiles(Kernels<Steps>::walk_and_fill);
}

template class NearestClear<std::int16_t>;
template class NearestClear<std::int32_t>;
