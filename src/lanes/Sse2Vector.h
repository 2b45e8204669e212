// Two pixels in the 128-bit vectors of SSE2; single-precision and integer vectors use their lower half.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

namespace LANES {

inline constexpr int kVectorWidth = 2;

using FloatVector = __m128;
using DoubleVector = __m128d;
using IntVector = __m128i;
// All bits of a lane.
using FloatMaskVector = __m128i;
struct DoubleMaskVector {
    __m128i bits;
};

#define VECTOR_FUNCTION [[gnu::always_inline]] inline

VECTOR_FUNCTION FloatVector splat(float v) {
    return _mm_set1_ps(v);
}
VECTOR_FUNCTION DoubleVector splat(double v) {
    return _mm_set1_pd(v);
}
VECTOR_FUNCTION IntVector splat(std::int32_t v) {
    return _mm_set1_epi32(v);
}
VECTOR_FUNCTION FloatVector load_vector(const float* p) {
    return _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
VECTOR_FUNCTION void store_vector(float* p, FloatVector v) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_castps_si128(v));
}

#define VECTOR_COMPARISON(name, how)                                        \
    VECTOR_FUNCTION FloatMaskVector name(FloatVector a, FloatVector b) {    \
        return _mm_castps_si128(_mm_##how##_ps(a, b));                      \
    }                                                                       \
    VECTOR_FUNCTION DoubleMaskVector name(DoubleVector a, DoubleVector b) { \
        return {_mm_castpd_si128(_mm_##how##_pd(a, b))};                    \
    }
VECTOR_COMPARISON(less, cmplt)
VECTOR_COMPARISON(less_equal, cmple)
VECTOR_COMPARISON(equal, cmpeq)
VECTOR_COMPARISON(unequal, cmpneq)
#undef VECTOR_COMPARISON

VECTOR_FUNCTION FloatMaskVector both(FloatMaskVector a, FloatMaskVector b) {
    return _mm_and_si128(a, b);
}
VECTOR_FUNCTION FloatMaskVector either(FloatMaskVector a, FloatMaskVector b) {
    return _mm_or_si128(a, b);
}
VECTOR_FUNCTION DoubleMaskVector both(DoubleMaskVector a, DoubleMaskVector b) {
    return {_mm_and_si128(a.bits, b.bits)};
}
VECTOR_FUNCTION DoubleMaskVector either(DoubleMaskVector a, DoubleMaskVector b) {
    return {_mm_or_si128(a.bits, b.bits)};
}
VECTOR_FUNCTION bool all_bits(FloatMaskVector m) {
    return (_mm_movemask_ps(_mm_castsi128_ps(m)) & 0x3) == 0x3;
}
VECTOR_FUNCTION bool all_bits(DoubleMaskVector m) {
    return _mm_movemask_pd(_mm_castsi128_pd(m.bits)) == 0x3;
}

VECTOR_FUNCTION __m128i select_bits(__m128i m, __m128i a, __m128i b) {
    return _mm_or_si128(_mm_and_si128(m, a), _mm_andnot_si128(m, b));
}
VECTOR_FUNCTION FloatVector select(FloatMaskVector m, FloatVector a, FloatVector b) {
    return _mm_castsi128_ps(select_bits(m, _mm_castps_si128(a), _mm_castps_si128(b)));
}
VECTOR_FUNCTION DoubleVector select(DoubleMaskVector m, DoubleVector a, DoubleVector b) {
    return _mm_castsi128_pd(select_bits(m.bits, _mm_castpd_si128(a), _mm_castpd_si128(b)));
}
// The second operand wins ties and NaN.
VECTOR_FUNCTION FloatVector larger(FloatVector a, FloatVector b) {
    return _mm_max_ps(a, b);
}
VECTOR_FUNCTION FloatVector smaller(FloatVector a, FloatVector b) {
    return _mm_min_ps(a, b);
}
VECTOR_FUNCTION DoubleVector larger(DoubleVector a, DoubleVector b) {
    return _mm_max_pd(a, b);
}
VECTOR_FUNCTION DoubleVector smaller(DoubleVector a, DoubleVector b) {
    return _mm_min_pd(a, b);
}

VECTOR_FUNCTION IntVector difference(IntVector a, IntVector b) {
    return _mm_sub_epi32(a, b);
}

VECTOR_FUNCTION DoubleVector widened(FloatVector v) {
    return _mm_cvtps_pd(v);
}
VECTOR_FUNCTION DoubleVector widened(IntVector v) {
    return _mm_cvtepi32_pd(v);
}
VECTOR_FUNCTION FloatVector narrowed(DoubleVector v) {
    return _mm_cvtpd_ps(v);
}
VECTOR_FUNCTION FloatVector single(IntVector v) {
    return _mm_cvtepi32_ps(v);
}
VECTOR_FUNCTION IntVector converted(DoubleVector v) {
    return _mm_cvttpd_epi32(v);
}

#undef VECTOR_FUNCTION

}  // namespace LANES
