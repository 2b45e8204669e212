// Joins every window along a line, in a time that hardly grows with the window. The operation must not mind
// taking a value twice: the larger of two, either of two.
#pragma once

#include <cstddef>

namespace LANES {

// put(i, the join of the windows of `size` values that cover `window` values from i on) for i < n; at most
// four of them. What is put may take the place of values that are read no more.
template <class T, class Join, class Put>
[[gnu::always_inline]] inline void join_windows(const T* values, Join join, std::size_t size,
                                                std::size_t window, std::size_t n, Put put) {
    const T* last = values + (window - size);
    if (last == values) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) put(i, values[i]);
    } else if (window <= 2 * size) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) put(i, join(values[i], last[i]));
    } else if (window <= 3 * size) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) put(i, join(join(values[i], values[i + size]), last[i]));
    } else {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) {
            put(i, join(join(join(values[i], values[i + size]), values[i + 2 * size]), last[i]));
        }
    }
}

// put(i, the join of values[i] to values[i + window - 1]) for i < n; window >= 1. The values are used up.
//
// Windows of 1, 4, 16 ... values, each of four from the step before; the last step joins up to four that
// overlap.
template <class T, class Join, class Put>
[[gnu::always_inline]] inline void sliding_join(T* values, std::size_t window, std::size_t n, Join join,
                                                Put put) {
    std::size_t size = 1;
    for (; 4 * size < window; size *= 4) {
        join_windows(values, join, size, 4 * size, n + window - 4 * size,
                     [values](std::size_t i, T v) { values[i] = v; });
    }
    join_windows(values, join, size, window, n, put);
}

}  // namespace LANES
