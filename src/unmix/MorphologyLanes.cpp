#include <cmath>

#include "unmix/FloatMath.h"
#include "unmix/MorphologyKernel.h"

namespace LANES {

namespace {

using kernel::less;
using std::size_t;

template <int kSide>
[[gnu::always_inline]] inline void between(const float* cells, float* __restrict out, size_t gaps) {
    for (size_t n = 0; n < gaps; ++n) {
        const float left = cells[n];
        const float slope = cells[n + 1] - left;
        for (int i = 0; i < kSide; ++i) {
            constexpr float kStep = 1.0f / static_cast<float>(kSide);
            out[n * kSide + static_cast<size_t>(i)] = left + slope * ((static_cast<float>(i) + 0.5f) * kStep);
        }
    }
}

}  // namespace

void grow_mask(const std::array<const std::uint8_t*, 3>& rows, std::uint8_t* __restrict out, size_t n) {
    const auto [below, here, above] = rows;
    for (size_t i = 0; i < n; ++i) {
        out[i] = static_cast<std::uint8_t>(below[i + 1] | above[i + 1] | here[i] | here[i + 1] | here[i + 2]);
    }
}

void shrink_mask(const std::array<const std::uint8_t*, 3>& rows, std::uint8_t* __restrict out, size_t n) {
    const auto [below, here, above] = rows;
    for (size_t i = 0; i < n; ++i) {
        out[i] = static_cast<std::uint8_t>(below[i + 1] & above[i + 1] & here[i] & here[i + 1] & here[i + 2]);
    }
}

void step_away(const std::uint8_t* mask, float most, float* __restrict steps, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        const float next = less(steps[i] + 1.0f, most);
        steps[i] = static_cast<float>(mask[i]) * next;
    }
}

void keep_less(const float* v, float* __restrict out, size_t n) {
    for (size_t i = 0; i < n; ++i) out[i] = less(v[i], out[i]);
}

void row_distance(const float* columns, int reach, float most, float* __restrict squares,
                  float* __restrict out, size_t n) {
    const auto r = static_cast<size_t>(reach);
    const float far = static_cast<float>(reach) * static_cast<float>(reach);
    for (size_t i = 0; i < r; ++i) squares[i] = squares[n + r + i] = far;
    for (size_t i = 0; i < n; ++i) squares[r + i] = columns[i] * columns[i];
    // A block's least values stay in registers over all offsets.
    constexpr size_t kBlock = 64;
    for (size_t start = 0; start < n; start += kBlock) {
        const float* const middle = squares + r + start;
        const size_t count = n - start < kBlock ? n - start : kBlock;
        float best[kBlock];
        for (size_t i = 0; i < kBlock; ++i) best[i] = middle[i];
        for (size_t d = 1; d < r; ++d) {
            const auto across = static_cast<float>(static_cast<int>(d * d));
            const float* const before = middle - d;
            const float* const after = middle + d;
            for (size_t i = 0; i < kBlock; ++i) best[i] = less(best[i], less(before[i], after[i]) + across);
        }
        for (size_t i = 0; i < count; ++i) out[start + i] = less(std::sqrt(best[i]), most);
    }
}

void between_middles(const float* cells, int side, float* __restrict out, size_t gaps) {
    switch (side) {
        case 2:
            return between<2>(cells, out, gaps);
        case 4:
            return between<4>(cells, out, gaps);
        case 8:
            return between<8>(cells, out, gaps);
        default:
            break;
    }
    for (size_t n = 0; n < gaps; ++n) {
        const float slope = cells[n + 1] - cells[n];
        for (int i = 0; i < side; ++i) {
            const float share = (static_cast<float>(i) + 0.5f) / static_cast<float>(side);
            out[n * static_cast<size_t>(side) + static_cast<size_t>(i)] = cells[n] + slope * share;
        }
    }
}

void fold_row(const float* row, const ColumnFolds& folds, size_t n) {
    float* const least = folds.least;
    float* const most = folds.most;
    float* const sum = folds.sum;
#pragma GCC ivdep
    for (size_t i = 0; i < n; ++i) {
        const float v = row[i];
        least[i] = less(v, least[i]);
        most[i] = v > most[i] ? v : most[i];
        sum[i] += v;
    }
}

void fold_pairs(const ColumnFolds& folds, size_t n) {
    float* const least = folds.least;
    float* const most = folds.most;
    float* const sum = folds.sum;
    for (size_t i = 0; i < n / 2; ++i) {
        least[i] = less(least[2 * i], least[2 * i + 1]);
        most[i] = most[2 * i] > most[2 * i + 1] ? most[2 * i] : most[2 * i + 1];
        sum[i] = sum[2 * i] + sum[2 * i + 1];
    }
}

void mix_rows(const float* a, const float* b, float share, float* __restrict out, size_t n) {
    for (size_t i = 0; i < n; ++i) out[i] = a[i] + share * (b[i] - a[i]);
}

}  // namespace LANES
