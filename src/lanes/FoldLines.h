// Folds lines of pixels into one, column by column: the inner loop of every filter that looks along rows or
// columns. A vertical filter gives it rows, a horizontal one the same row shifted.
#pragma once

#include <cstddef>
#include <span>

namespace LANES {

// As many columns as one vector holds; arithmetic, comparisons and selections work on it as on a float.
#if LANE_BITS == 0
using Columns = float;
inline constexpr std::size_t kColumns = 1;
#else
using Columns [[gnu::vector_size(LANE_BITS / 8)]] = float;
inline constexpr std::size_t kColumns = LANE_BITS / 32;
#endif

// Enough of them to keep the processor busy while each waits for its own last operation.
inline constexpr std::size_t kVectorsAtOnce = 8;

// The vectors stay in registers while all lines pass.
template <std::size_t kVectors, class Op, class End>
[[gnu::always_inline]] inline void fold_columns(const float* const* lines, std::size_t count, float* result,
                                                std::size_t at, Op op, End end) {
    const auto load = [](const float* from) {
        Columns v;
        __builtin_memcpy(&v, from, sizeof(v));
        return v;
    };
    Columns folded[kVectors];
#pragma GCC unroll 8
    for (std::size_t j = 0; j < kVectors; ++j) folded[j] = load(result + at + j * kColumns);
    for (std::size_t k = 0; k < count; ++k) {
        const float* line = lines[k] + at;
#pragma GCC unroll 8
        for (std::size_t j = 0; j < kVectors; ++j) folded[j] = op(folded[j], load(line + j * kColumns));
    }
#pragma GCC unroll 8
    for (std::size_t j = 0; j < kVectors; ++j) {
        const Columns v = end(folded[j]);
        __builtin_memcpy(result + at + j * kColumns, &v, sizeof(Columns));
    }
}

// result[i] = end(op(... op(op(result[i], lines[0][i]), lines[1][i]) ..., lines.back()[i])) for i < n.
// Every column takes the lines in their order, so sums round as the plain loop over them does. Lines may
// overlap each other, not the result.
template <class Op, class End>
[[gnu::always_inline]] inline void fold_lines(std::span<const float* const> lines, float* result,
                                              std::size_t n, Op op, End end) {
    const float* const* first = lines.data();
    const std::size_t count = lines.size();
    std::size_t i = 0;
    for (; i + kVectorsAtOnce * kColumns <= n; i += kVectorsAtOnce * kColumns) {
        fold_columns<kVectorsAtOnce>(first, count, result, i, op, end);
    }
    for (; i + kColumns <= n; i += kColumns) fold_columns<1>(first, count, result, i, op, end);
    for (; i < n; ++i) {
        float folded = result[i];
        for (std::size_t k = 0; k < count; ++k) folded = op(folded, first[k][i]);
        result[i] = end(folded);
    }
}

template <class Op>
[[gnu::always_inline]] inline void fold_lines(std::span<const float* const> lines, float* result,
                                              std::size_t n, Op op) {
    fold_lines(lines, result, n, op, [](auto v) { return v; });
}

}  // namespace LANES
