#include <cmath>

#include "lanes/FloatLogExp.h"
#include "unmix/CleanKernel.h"
#include "unmix/FloatMath.h"

namespace LANES {

namespace {

using kernel::clamped;
using kernel::larger;
using std::size_t;

constexpr float kNoiseOnly = 3.0f;  // ratios of variance: smoothed below this,
constexpr float kRamp = 1.5f;       // kept from so much more on
constexpr float kSeen = 2.5f;       // times the deviation
constexpr float kSeenAround = 1.5f;
constexpr float kLeastSeen = 0.03f;
constexpr float kSlope = 3.0f;  // of the density of alphas that are not 0
constexpr float kGround = 0.3f;
constexpr float kHalfNormal = 0.79788456f;  // its density at 0 for a deviation of 1
constexpr float kOpaqueDeviation = 0.5f;  // of all that makes alpha uncertain, how much is symmetric around 1
constexpr float kMostUncertain = 0.15f;

[[gnu::always_inline]] inline float deviation_of(float variance, float unknown, float denoise) {
    const float s = denoise * std::sqrt(larger(variance, 1e-8f));
    return unknown > 0.0f ? larger(s, 1e-6f) : 1.0f;
}

[[gnu::always_inline]] inline float half_normal(float v, float s) {
    const float t = v / s;
    return kHalfNormal / s * kernel::float_exp(-0.5f * t * t);
}

}  // namespace

void noise_ratio(const AlphaSums& sums, const float* mask, float* __restrict ratio, size_t n) {
    const AlphaSums s = sums;
    for (size_t i = 0; i < n; ++i) {
        const float count = larger(s.mask[i], 1e-4f);
        const float mean = s.alpha[i] / count;
        const float spread = larger(s.square[i] / count - mean * mean, 0.0f);
        const float by_noise = larger(s.variance[i] / count, 1e-9f);
        ratio[i] = mask[i] > 0.0f ? spread / by_noise : 0.0f;
    }
}

void smooth_alpha(const CleanParams& params, const AlphaSums& sums, const float* ratio, const float* unknown,
                  const float* alpha, float* __restrict out, size_t n) {
    const AlphaSums s = sums;
    const float scale = params.denoise / larger(params.detail, 1e-3f);
    const float from = kNoiseOnly * scale;
    const float ramp = larger(kRamp * scale, 1e-3f);
    for (size_t i = 0; i < n; ++i) {
        const float mean = s.alpha[i] / larger(s.mask[i], 1e-4f);
        const float keep = clamped(0.0f, 1.0f, (ratio[i] - from) / ramp);
        out[i] = unknown[i] > 0.0f ? mean + keep * (alpha[i] - mean) : alpha[i];
    }
}

void mark_seen(const CleanParams& params, const float* alpha, const float* sum, const float* variance,
               const float* unknown, const float* solid, float* __restrict marked, size_t n) {
    const float denoise = params.denoise;
    const float detail = larger(params.detail, 1e-3f);
    const float seen = kSeen / detail;
    const float around = kSeenAround / detail;
    for (size_t i = 0; i < n; ++i) {
        const float s = deviation_of(variance[i], unknown[i], denoise);
        const float here = alpha[i] > seen * s ? 1.0f : 0.0f;
        const float near = sum[i] * (1.0f / 9.0f) > larger(around * s, kLeastSeen) ? 1.0f : 0.0f;
        marked[i] = larger(unknown[i] * larger(here, near), solid[i]);
    }
}

void pull_to_clear(const CleanParams& params, const float* marked, const float* variance,
                   const float* unknown, float* __restrict alpha, size_t n) {
    const float denoise = params.denoise;
    for (size_t i = 0; i < n; ++i) {
        const float a = alpha[i];
        const float s = deviation_of(variance[i], unknown[i], denoise);
        const float p = clamped(0.0f, 0.95f, marked[i] * (1.0f / 121.0f) - 0.03f) + 1e-4f;
        const float something = p * (kSlope * kernel::float_exp(-kSlope * a) + kGround);
        const float nothing = (1.0f - p) * half_normal(a, s);
        const float pulled = a * (something / (something + nothing));
        alpha[i] = unknown[i] > 0.0f && denoise > 0.0f ? pulled : a;
    }
}

void mark_opaque(const CleanParams& params, const float* alpha, const float* deviation, const float* unknown,
                 const float* solid, float* __restrict marked, size_t n) {
    const float scale = kOpaqueDeviation * params.denoise;
    for (size_t i = 0; i < n; ++i) {
        const float t = larger(scale * deviation[i], 1e-3f);
        const float near = 1.0f - alpha[i] < 2.0f * t ? 1.0f : 0.0f;
        const float sure = t < kMostUncertain ? 1.0f : 0.0f;
        marked[i] = larger(unknown[i] * near * sure, solid[i]);
    }
}

void pull_to_opaque(const CleanParams& params, const float* marked, const float* deviation,
                    const float* unknown, float* __restrict alpha, size_t n) {
    const float denoise = params.denoise;
    const float scale = kOpaqueDeviation * denoise;
    for (size_t i = 0; i < n; ++i) {
        const float t = larger(scale * deviation[i], 1e-3f);
        const float y = 1.0f - alpha[i];
        const float p = clamped(1e-4f, 0.99f, (marked[i] * (1.0f / 49.0f) - 0.1f) / 0.9f);
        const float opaque = p * half_normal(y, t);
        const float pulled = alpha[i] + y * (opaque / (opaque + (1.0f - p)));
        alpha[i] = unknown[i] > 0.0f && denoise > 0.0f ? pulled : alpha[i];
    }
}

}  // namespace LANES
