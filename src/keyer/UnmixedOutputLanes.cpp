#include "keyer/OutputKernel.h"
#include "lanes/KernelMath.h"
#include "stages/WorkingScale.h"
#include "unmix/EncodingKernel.h"

using kernel::one_nan;

namespace LANES {

// As in OutputLanes.cpp outputs may be inputs.

namespace {

constexpr float kLargestHalf = 65504.0f;

}  // namespace

void decoded_colour(const float* colour, float* out, std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = kernel::cap_at(kLargestHalf, decode(colour[i], kOutputPivot));
    }
}

void larger_opacity(const float* other, float* k, std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) k[i] = kernel::max_of(other[i], k[i]);
}

namespace {

// What the composite takes of a colour that is premultiplied by its share.
[[gnu::always_inline]] inline float left_of(float colour, float k, float share) {
    return colour * (k < share ? k / share : 1.0f);
}

void mix_stored(const float* colour, const float* background, const float* k, const float* share, float* out,
                std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float left = left_of(colour[i], k[i], share[i]);
        const float over = k[i] == 1.0f ? one_nan(left) : one_nan(left + (1.0f - k[i]) * background[i]);
        out[i] = k[i] == 0.0f ? background[i] : over;
    }
}

void mix_light(Encoding encoding, const float* colour, const float* background, const float* k,
               const float* share, float* out, std::size_t n) {
    constexpr std::size_t kChunk = 256;
    float subject[kChunk];
    float behind[kChunk];
    for (std::size_t begin = 0; begin < n; begin += kChunk) {
        const std::size_t count = n - begin < kChunk ? n - begin : kChunk;
        for (std::size_t i = 0; i < count; ++i) {
            const float s = share[begin + i];
            subject[i] = s == 0.0f ? 0.0f : colour[begin + i] / s;
        }
        to_light(encoding, subject, subject, count);
        to_light(encoding, background + begin, behind, count);
        for (std::size_t i = 0; i < count; ++i) {
            const float opaque = k[begin + i];
            const float held = kernel::min_of(opaque, share[begin + i]);
            subject[i] = subject[i] * held + (1.0f - opaque) * behind[i];
        }
        from_light(encoding, subject, subject, count);
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t at = begin + i;
            const float whole = one_nan(colour[at]);
            const float over = k[at] == 1.0f && share[at] == 1.0f ? whole : subject[i];
            out[at] = k[at] == 0.0f ? background[at] : over;
        }
    }
}

}  // namespace

void unmixed_colour(const UnmixedParams& params, const float* colour, const float* background, const float* k,
                    const float* share, float* out, std::size_t n) {
    if (params.mode == OutputMode::kPremultiplied) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) {
            const float v = one_nan(colour[i] * (k[i] / share[i]));
            out[i] = k[i] == 0.0f || share[i] == 0.0f ? 0.0f : v;
        }
    } else if (params.mode == OutputMode::kUnpremultiplied) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) {
            // Noise over hardly any share may be more than files hold.
            const float v = one_nan(kernel::clamp_to(-kLargestHalf, kLargestHalf, colour[i] / share[i]));
            out[i] = k[i] == 0.0f || share[i] == 0.0f ? 0.0f : v;
        }
    } else if (params.encoding == Encoding::kStored) {
        mix_stored(colour, background, k, share, out, n);
    } else {
        mix_light(params.encoding, colour, background, k, share, out, n);
    }
}

}  // namespace LANES
