// Eight pixels in the compiler's own vectors, for any processor: the pack of the widest form where nothing
// that wide is there. Only tests use it.
#pragma once

#include <cstdint>

#include "lanes/KernelMath.h"

namespace LANES {

inline constexpr int kVectorWidth = 8;

using FloatVector [[gnu::vector_size(32)]] = float;
using DoubleVector [[gnu::vector_size(64)]] = double;
using IntVector [[gnu::vector_size(32)]] = std::int32_t;
using LongMask [[gnu::vector_size(64)]] = std::int64_t;
struct FloatMaskVector {
    IntVector bits;
};
struct DoubleMaskVector {
    LongMask bits;
};

#define VECTOR_FUNCTION [[gnu::always_inline]] inline

VECTOR_FUNCTION FloatVector splat(float v) {
    return FloatVector{} + v;
}
VECTOR_FUNCTION DoubleVector splat(double v) {
    return DoubleVector{} + v;
}
VECTOR_FUNCTION IntVector splat(std::int32_t v) {
    return IntVector{} + v;
}
VECTOR_FUNCTION FloatVector load_vector(const float* p) {
    FloatVector v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
VECTOR_FUNCTION void store_vector(float* p, FloatVector v) {
    __builtin_memcpy(p, &v, sizeof v);
}

#define VECTOR_OPERATIONS(Vector, Mask)                                     \
    VECTOR_FUNCTION Mask less(Vector a, Vector b) {                         \
        return {a < b};                                                     \
    }                                                                       \
    VECTOR_FUNCTION Mask less_equal(Vector a, Vector b) {                   \
        return {a <= b};                                                    \
    }                                                                       \
    VECTOR_FUNCTION Mask equal(Vector a, Vector b) {                        \
        return {a == b};                                                    \
    }                                                                       \
    VECTOR_FUNCTION Mask unequal(Vector a, Vector b) {                      \
        return {a != b};                                                    \
    }                                                                       \
    VECTOR_FUNCTION Mask both(Mask a, Mask b) {                             \
        return {a.bits & b.bits};                                           \
    }                                                                       \
    VECTOR_FUNCTION Mask either(Mask a, Mask b) {                           \
        return {a.bits | b.bits};                                           \
    }                                                                       \
    VECTOR_FUNCTION bool all_bits(Mask m) {                                 \
        bool all = true;                                                    \
        for (int i = 0; i < kVectorWidth; ++i) all = all && m.bits[i] != 0; \
        return all;                                                         \
    }                                                                       \
    VECTOR_FUNCTION Vector select(Mask m, Vector a, Vector b) {             \
        return m.bits ? a : b;                                              \
    }                                                                       \
    /* The second operand wins ties and NaN. */                             \
    VECTOR_FUNCTION Vector larger(Vector a, Vector b) {                     \
        return a > b ? a : b;                                               \
    }                                                                       \
    VECTOR_FUNCTION Vector smaller(Vector a, Vector b) {                    \
        return b > a ? a : b;                                               \
    }
VECTOR_OPERATIONS(FloatVector, FloatMaskVector)
VECTOR_OPERATIONS(DoubleVector, DoubleMaskVector)
#undef VECTOR_OPERATIONS

VECTOR_FUNCTION IntVector difference(IntVector a, IntVector b) {
    IntVector result;
    for (int i = 0; i < kVectorWidth; ++i) result[i] = kernel::minus(a[i], b[i]);
    return result;
}

VECTOR_FUNCTION DoubleVector widened(FloatVector v) {
    return __builtin_convertvector(v, DoubleVector);
}
VECTOR_FUNCTION DoubleVector widened(IntVector v) {
    return __builtin_convertvector(v, DoubleVector);
}
VECTOR_FUNCTION FloatVector narrowed(DoubleVector v) {
    return __builtin_convertvector(v, FloatVector);
}
VECTOR_FUNCTION FloatVector single(IntVector v) {
    return __builtin_convertvector(v, FloatVector);
}
VECTOR_FUNCTION IntVector converted(DoubleVector v) {
    IntVector result;
    for (int i = 0; i < kVectorWidth; ++i) result[i] = kernel::truncated(v[i]);
    return result;
}

#undef VECTOR_FUNCTION

}  // namespace LANES
