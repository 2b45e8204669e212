// Folds lines of pixels into one, column by column: the inner loop of every filter that looks along rows or
// columns. A vertical filter gives it rows, a horizontal one the same row shifted.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

// result[i] = op(... op(op(result[i], lines[0][i]), lines[1][i]) ..., lines.back()[i]) for i < n.
// Every column takes the lines in their order, so sums round as the plain loop over them does; columns are
// independent, so the loop vectorises. Lines may overlap each other, not the result.
template <class Op>
void fold_lines(std::span<const float* const> lines, float* __restrict result, std::size_t n, Op op) {
    constexpr std::size_t kBlock =
        1024;  // columns of which the result and four lines stay in the first cache
    for (std::size_t begin = 0; begin < n; begin += kBlock) {
        const std::size_t end = std::min(n, begin + kBlock);
        std::size_t k = 0;
        for (; k + 4 <= lines.size(); k += 4) {
            const float* a = lines[k];
            const float* b = lines[k + 1];
            const float* c = lines[k + 2];
            const float* d = lines[k + 3];
            for (std::size_t i = begin; i < end; ++i) {
                result[i] = op(op(op(op(result[i], a[i]), b[i]), c[i]), d[i]);
            }
        }
        for (; k < lines.size(); ++k) {
            const float* a = lines[k];
            for (std::size_t i = begin; i < end; ++i) result[i] = op(result[i], a[i]);
        }
    }
}

// Calls use(lines) for consecutive groups of line_of(first) to line_of(last), so that a filter of any height
// needs no memory of its own.
template <class LineOf, class Use>
void in_groups(int first, int last, LineOf&& line_of, Use&& use) {
    std::array<const float*, 64> lines;
    std::size_t count = 0;
    for (int k = first; k <= last; ++k) {
        lines[count++] = line_of(k);
        if (count < lines.size() && k < last) continue;
        use(std::span<const float* const>(lines.data(), count));
        count = 0;
    }
}
