// The largest value of every window along a line, in a time that hardly grows with the window.
#pragma once

#include <cstddef>

// values[i] = the largest of values[i] to values[i + window - 1], in place, for i + window <= count; the
// values after that are left undefined. No value may be NaN. window >= 1.
void sliding_max(float* values, std::size_t count, std::size_t window);
