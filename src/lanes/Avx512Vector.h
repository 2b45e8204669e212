// Eight pixels in the 512-bit vectors of AVX-512.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace LANES {

inline constexpr int kVectorWidth = 8;

using FloatVector = __m256;
using DoubleVector = __m512d;
using IntVector = __m256i;
struct FloatMaskVector {
    __mmask8 bits;
};
struct DoubleMaskVector {
    __mmask8 bits;
};

#define VECTOR_FUNCTION [[gnu::always_inline]] inline

VECTOR_FUNCTION FloatVector splat(float v) {
    return _mm256_set1_ps(v);
}
VECTOR_FUNCTION DoubleVector splat(double v) {
    return _mm512_set1_pd(v);
}
VECTOR_FUNCTION IntVector splat(std::int32_t v) {
    return _mm256_set1_epi32(v);
}
VECTOR_FUNCTION FloatVector load_vector(const float* p) {
    return _mm256_loadu_ps(p);
}
VECTOR_FUNCTION void store_vector(float* p, FloatVector v) {
    _mm256_storeu_ps(p, v);
}

#define VECTOR_COMPARISON(name, how)                                        \
    VECTOR_FUNCTION FloatMaskVector name(FloatVector a, FloatVector b) {    \
        return {_mm256_cmp_ps_mask(a, b, how)};                             \
    }                                                                       \
    VECTOR_FUNCTION DoubleMaskVector name(DoubleVector a, DoubleVector b) { \
        return {_mm512_cmp_pd_mask(a, b, how)};                             \
    }
VECTOR_COMPARISON(less, _CMP_LT_OQ)
VECTOR_COMPARISON(less_equal, _CMP_LE_OQ)
VECTOR_COMPARISON(equal, _CMP_EQ_OQ)
VECTOR_COMPARISON(unequal, _CMP_NEQ_UQ)
#undef VECTOR_COMPARISON

VECTOR_FUNCTION FloatMaskVector both(FloatMaskVector a, FloatMaskVector b) {
    return {_kand_mask8(a.bits, b.bits)};
}
VECTOR_FUNCTION FloatMaskVector either(FloatMaskVector a, FloatMaskVector b) {
    return {_kor_mask8(a.bits, b.bits)};
}
VECTOR_FUNCTION DoubleMaskVector both(DoubleMaskVector a, DoubleMaskVector b) {
    return {_kand_mask8(a.bits, b.bits)};
}
VECTOR_FUNCTION DoubleMaskVector either(DoubleMaskVector a, DoubleMaskVector b) {
    return {_kor_mask8(a.bits, b.bits)};
}
VECTOR_FUNCTION bool all_bits(FloatMaskVector m) {
    return m.bits == 0xff;
}
VECTOR_FUNCTION bool all_bits(DoubleMaskVector m) {
    return m.bits == 0xff;
}

VECTOR_FUNCTION FloatVector select(FloatMaskVector m, FloatVector a, FloatVector b) {
    return _mm256_mask_blend_ps(m.bits, b, a);
}
VECTOR_FUNCTION DoubleVector select(DoubleMaskVector m, DoubleVector a, DoubleVector b) {
    return _mm512_mask_blend_pd(m.bits, b, a);
}
// The second operand wins ties and NaN.
VECTOR_FUNCTION FloatVector larger(FloatVector a, FloatVector b) {
    return _mm256_max_ps(a, b);
}
VECTOR_FUNCTION FloatVector smaller(FloatVector a, FloatVector b) {
    return _mm256_min_ps(a, b);
}
VECTOR_FUNCTION DoubleVector larger(DoubleVector a, DoubleVector b) {
    return _mm512_max_pd(a, b);
}
VECTOR_FUNCTION DoubleVector smaller(DoubleVector a, DoubleVector b) {
    return _mm512_min_pd(a, b);
}

VECTOR_FUNCTION IntVector difference(IntVector a, IntVector b) {
    return _mm256_sub_epi32(a, b);
}

VECTOR_FUNCTION DoubleVector widened(FloatVector v) {
    return _mm512_cvtps_pd(v);
}
VECTOR_FUNCTION DoubleVector widened(IntVector v) {
    return _mm512_cvtepi32_pd(v);
}
VECTOR_FUNCTION FloatVector narrowed(DoubleVector v) {
    return _mm512_cvtpd_ps(v);
}
VECTOR_FUNCTION FloatVector single(IntVector v) {
    return _mm256_cvtepi32_ps(v);
}
VECTOR_FUNCTION IntVector converted(DoubleVector v) {
    return _mm512_cvttpd_epi32(v);
}

#undef VECTOR_FUNCTION

}  // namespace LANES
