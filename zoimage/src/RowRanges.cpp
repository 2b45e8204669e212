#include "RowRanges.h"

#include <algorithm>

namespace Zo::Image {

namespace {

constexpr int kBandRows = 16;

}  // namespace

RowRanges::RowRanges(int y, int t, int workers, int least)
    : ranges_(static_cast<std::size_t>(workers)), least_(std::max(1, least)) {
    const std::int64_t rows = std::int64_t{t} - y;
    const auto cut = [&](int part) { return static_cast<int>(y + rows * part / workers); };
    for (int i = 0; i < workers; ++i) ranges_[static_cast<std::size_t>(i)].left = {cut(i), cut(i + 1)};
}

Band RowRanges::take(int worker) {
    Range& own = ranges_[static_cast<std::size_t>(worker)];
    do {
        for (Band left = own.left.load(); !left.empty();) {
            const int next = left.rows() > kBandRows ? left.y + kBandRows : left.t;
            if (own.left.compare_exchange_weak(left, {next, left.t})) return {left.y, next};
        }
    } while (steal(worker));
    return {0, 0};
}

bool RowRanges::steal(int thief) {
    for (;;) {
        Range* victim = nullptr;
        Band most{0, least_ - 1};
        for (Range& range : ranges_) {
            const Band left = range.left.load();
            if (left.rows() <= most.rows()) continue;
            most = left;
            victim = &range;
        }
        if (victim == nullptr) return false;
        const int middle = most.y + most.rows() / 2;
        const Band rest{middle, most.t};
        if (victim->left.compare_exchange_strong(most, {most.y, middle})) {
            ranges_[static_cast<std::size_t>(thief)].left = rest;
            return true;
        }
    }
}

}  // namespace Zo::Image
