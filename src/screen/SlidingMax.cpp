#include "screen/SlidingMax.h"

void sliding_max(float* values, std::size_t count, std::size_t window) {
    const auto join = [&](std::size_t offset) {
        for (std::size_t i = 0; i + offset < count; ++i) {
            const float a = values[i];
            const float b = values[i + offset];
            values[i] = b > a ? b : a;
        }
        count -= offset;
    };
    // Windows of 1, 2, 4 ... values; the last step joins two that overlap.
    std::size_t size = 1;
    for (; 2 * size <= window; size *= 2) join(size);
    if (size < window) join(window - size);
}
