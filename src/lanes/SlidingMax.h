// The largest value of every window along a line, in a time that hardly grows with the window.
#pragma once

#include <cstddef>

namespace LANES {

// The first operand stands against ties and NaN.
[[gnu::always_inline]] inline float larger(float m, float v) {
    return v > m ? v : m;
}

// The largest of kParts values `step` apart, the last of them `last` from the first.
template <std::size_t kParts, class Value>
[[gnu::always_inline]] inline float largest(Value value, std::size_t i, std::size_t step, std::size_t last) {
    float m = value(i);
    if constexpr (kParts > 2) m = larger(m, value(i + step));
    if constexpr (kParts > 3) m = larger(m, value(i + 2 * step));
    if constexpr (kParts > 1) m = larger(m, value(i + last));
    return m;
}

// put(i, the largest of the windows of `size` values that cover `window` values from i on) for i < n.
template <class Value, class Put>
[[gnu::always_inline]] inline void join_windows(Value value, std::size_t size, std::size_t window,
                                                std::size_t n, Put put) {
    const std::size_t last = window - size;
    const std::size_t parts = (window + size - 1) / size;
    if (parts == 1) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) put(i, largest<1>(value, i, size, last));
    } else if (parts == 2) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) put(i, largest<2>(value, i, size, last));
    } else if (parts == 3) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) put(i, largest<3>(value, i, size, last));
    } else {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) put(i, largest<4>(value, i, size, last));
    }
}

// Calls put(i, the largest of value(i) to value(i + window - 1)) for i < n. No value may be NaN; window >= 1.
// `scratch` has room for n + window floats.
//
// Windows of 1, 4, 16 ... values, each of four from the step before; the last step joins up to four that
// overlap. The scratch is read ahead of where it is written.
template <class Value, class Put>
[[gnu::always_inline]] inline void sliding_max(std::size_t window, std::size_t n, Value value, float* scratch,
                                               Put put) {
    const auto held = [scratch](std::size_t i) { return scratch[i]; };
    const auto hold = [scratch](std::size_t i, float v) { scratch[i] = v; };
    if (window <= 4) {
        join_windows(value, 1, window, n, put);
        return;
    }
    join_windows(value, 1, 4, n + window - 4, hold);
    std::size_t size = 4;
    for (; 4 * size < window; size *= 4) join_windows(held, size, 4 * size, n + window - 4 * size, hold);
    join_windows(held, size, window, n, put);
}

}  // namespace LANES
