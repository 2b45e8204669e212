// What the unmixing loops do with single values. The second operand wins ties and NaN.
#pragma once

namespace kernel {

[[gnu::always_inline]] inline float larger(float a, float b) {
    return a > b ? a : b;
}

[[gnu::always_inline]] inline float less(float a, float b) {
    return a < b ? a : b;
}

[[gnu::always_inline]] inline float clamped(float low, float high, float v) {
    const float raised = v > low ? v : low;
    return raised < high ? raised : high;
}

}  // namespace kernel
