// Four pixels in the 256-bit vectors of AVX2.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace LANES {

inline constexpr int kVectorWidth = 4;

using FloatVector = __m128;
using DoubleVector = __m256d;
using IntVector = __m128i;
using FloatMaskVector = __m128i;  // all bits of a lane
using DoubleMaskVector = __m256i;

#define VECTOR_FUNCTION [[gnu::always_inline]] inline

VECTOR_FUNCTION FloatVector splat(float v) {
    return _mm_set1_ps(v);
}
VECTOR_FUNCTION DoubleVector splat(double v) {
    return _mm256_set1_pd(v);
}
VECTOR_FUNCTION IntVector splat(std::int32_t v) {
    return _mm_set1_epi32(v);
}
VECTOR_FUNCTION FloatVector load_vector(const float* p) {
    return _mm_loadu_ps(p);
}
VECTOR_FUNCTION void store_vector(float* p, FloatVector v) {
    _mm_storeu_ps(p, v);
}

#define VECTOR_COMPARISON(name, how)                                        \
    VECTOR_FUNCTION FloatMaskVector name(FloatVector a, FloatVector b) {    \
        return _mm_castps_si128(_mm_cmp_ps(a, b, how));                     \
    }                                                                       \
    VECTOR_FUNCTION DoubleMaskVector name(DoubleVector a, DoubleVector b) { \
        return _mm256_castpd_si256(_mm256_cmp_pd(a, b, how));               \
    }
VECTOR_COMPARISON(less, _CMP_LT_OQ)
VECTOR_COMPARISON(less_equal, _CMP_LE_OQ)
VECTOR_COMPARISON(equal, _CMP_EQ_OQ)
VECTOR_COMPARISON(unequal, _CMP_NEQ_UQ)
#undef VECTOR_COMPARISON

VECTOR_FUNCTION FloatMaskVector both(FloatMaskVector a, FloatMaskVector b) {
    return _mm_and_si128(a, b);
}
VECTOR_FUNCTION FloatMaskVector either(FloatMaskVector a, FloatMaskVector b) {
    return _mm_or_si128(a, b);
}
VECTOR_FUNCTION DoubleMaskVector both(DoubleMaskVector a, DoubleMaskVector b) {
    return _mm256_and_si256(a, b);
}
VECTOR_FUNCTION DoubleMaskVector either(DoubleMaskVector a, DoubleMaskVector b) {
    return _mm256_or_si256(a, b);
}
VECTOR_FUNCTION bool all_bits(FloatMaskVector m) {
    return _mm_movemask_ps(_mm_castsi128_ps(m)) == 0xf;
}
VECTOR_FUNCTION bool all_bits(DoubleMaskVector m) {
    return _mm256_movemask_pd(_mm256_castsi256_pd(m)) == 0xf;
}

VECTOR_FUNCTION FloatVector select(FloatMaskVector m, FloatVector a, FloatVector b) {
    return _mm_blendv_ps(b, a, _mm_castsi128_ps(m));
}
VECTOR_FUNCTION DoubleVector select(DoubleMaskVector m, DoubleVector a, DoubleVector b) {
    return _mm256_blendv_pd(b, a, _mm256_castsi256_pd(m));
}
// The second operand wins ties and NaN.
VECTOR_FUNCTION FloatVector larger(FloatVector a, FloatVector b) {
    return _mm_max_ps(a, b);
}
VECTOR_FUNCTION FloatVector smaller(FloatVector a, FloatVector b) {
    return _mm_min_ps(a, b);
}
VECTOR_FUNCTION DoubleVector larger(DoubleVector a, DoubleVector b) {
    return _mm256_max_pd(a, b);
}
VECTOR_FUNCTION DoubleVector smaller(DoubleVector a, DoubleVector b) {
    return _mm256_min_pd(a, b);
}

VECTOR_FUNCTION IntVector difference(IntVector a, IntVector b) {
    return _mm_sub_epi32(a, b);
}

VECTOR_FUNCTION DoubleVector widened(FloatVector v) {
    return _mm256_cvtps_pd(v);
}
VECTOR_FUNCTION DoubleVector widened(IntVector v) {
    return _mm256_cvtepi32_pd(v);
}
VECTOR_FUNCTION FloatVector narrowed(DoubleVector v) {
    return _mm256_cvtpd_ps(v);
}
VECTOR_FUNCTION FloatVector single(IntVector v) {
    return _mm_cvtepi32_ps(v);
}
VECTOR_FUNCTION IntVector converted(DoubleVector v) {
    return _mm256_cvttpd_epi32(v);
}

#undef VECTOR_FUNCTION

}  // namespace LANES
