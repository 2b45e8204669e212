// Between the host's values and the working scale of the kernels, 0 to 255: straight up to the pivot, above
// it a soft knee that bends the rest of the way to infinity into what is left. Single precision.
#pragma once

#include <limits>

inline constexpr float kOutputByte = 0.003921569f;

[[gnu::always_inline]] inline float encode(float value, float pivot) {
    const float above = value - pivot;
    const float compressed = pivot + (1.0f - pivot) * above / (above + 1.0f);
    return (pivot > value ? value : compressed) * 255.0f;
}

// 255 and above become infinity, a NaN stays as it is.
[[gnu::always_inline]] inline float decode(float v, float pivot) {
    const float s = v * kOutputByte;
    const float t = (s - pivot) / (1.0f - pivot);
    const float bent = t / (1.0f - t) + pivot;
    const float above = s >= 1.0f ? std::numeric_limits<float>::infinity() : bent;
    return s > pivot ? above : s;
}
