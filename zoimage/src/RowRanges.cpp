#include "RowRanges.h"

#include <algorithm>

namespace Zo::Image {

namespace {

std::uint64_t pack(Band band) {
    return (static_cast<std::uint64_t>(static_cast<std::uint32_t>(band.t)) << 32U) |
           static_cast<std::uint32_t>(band.y);
}

Band unpack(std::uint64_t ends) {
    return {static_cast<int>(static_cast<std::uint32_t>(ends)),
            static_cast<int>(static_cast<std::uint32_t>(ends >> 32U))};
}

}  // namespace

RowRanges::RowRanges(int y, int t, int workers, int least)
    : ranges_(static_cast<std::size_t>(workers)), least_(std::max(1, least)) {
    const std::int64_t rows = std::int64_t{t} - y;
    const auto cut = [&](int part) { return static_cast<int>(y + rows * part / workers); };
    for (int i = 0; i < workers; ++i) ranges_[static_cast<std::size_t>(i)].ends = pack({cut(i), cut(i + 1)});
}

Band RowRanges::take(int worker, int rows) {
    Range& own = ranges_[static_cast<std::size_t>(worker)];
    do {
        std::uint64_t ends = own.ends.load();
        for (Band left = unpack(ends); !left.empty(); left = unpack(ends)) {
            const int next = left.t - left.y > rows ? left.y + rows : left.t;
            if (own.ends.compare_exchange_weak(ends, pack({next, left.t}))) return {left.y, next};
        }
    } while (steal(worker));
    return {0, 0};
}

bool RowRanges::steal(int thief) {
    for (;;) {
        Range* victim = nullptr;
        std::uint64_t victim_ends = 0;
        int most = least_ - 1;
        for (Range& range : ranges_) {
            const std::uint64_t ends = range.ends.load();
            const Band left = unpack(ends);
            if (left.t - left.y > most) {
                most = left.t - left.y;
                victim = &range;
                victim_ends = ends;
            }
        }
        if (victim == nullptr) return false;
        const Band left = unpack(victim_ends);
        const int middle = left.y + (left.t - left.y) / 2;
        if (victim->ends.compare_exchange_strong(victim_ends, pack({left.y, middle}))) {
            ranges_[static_cast<std::size_t>(thief)].ends = pack({middle, left.t});
            return true;
        }
    }
}

}  // namespace Zo::Image
