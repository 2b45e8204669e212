#include "keyer/OutputKernel.h"
#include "lanes/KernelMath.h"
#include "stages/WorkingScale.h"

using kernel::one_nan;

namespace LANES {

// In all loops every pixel reads its inputs before it writes, and nobody reads another pixel: outputs may be
// inputs.

void opacity(const float* matte, float* k, std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        k[i] = kernel::clamp_to(0.0f, 1.0f, 1.0f - decode(matte[i], kOutputPivot));
    }
}

void linear_opacity(const float* matte, float* k, std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) k[i] = kernel::clamp_to(0.0f, 1.0f, 1.0f - matte[i] / 255.0f);
}

void colour_share(const float* matte, float* share, std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        share[i] = kernel::clamp_to(0.0f, 1.0f, 1.0f - matte[i] * kOutputByte);
    }
}

void output_colour(OutputMode mode, const float* colour, const float* background, const float* k, float* out,
                   std::size_t n) {
    if (mode == OutputMode::kPremultiplied) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) out[i] = one_nan(decode(colour[i], kOutputPivot) * k[i]);
    } else if (mode == OutputMode::kUnpremultiplied) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) out[i] = decode(colour[i], kOutputPivot);
    } else {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) {
            const float v = decode(colour[i], kOutputPivot) * k[i] + (1.0f - k[i]) * background[i];
            out[i] = one_nan(v);
        }
    }
}

namespace {

constexpr float kLargestHalf = 65504.0f;

[[gnu::always_inline]] inline float finite_colour(float v) {
    return kernel::cap_at(kLargestHalf, decode(v, kOutputPivot));
}

}  // namespace

void added_colour(OutputMode mode, const float* colour, const float* background, const float* k,
                  const float* share, float* out, std::size_t n) {
    if (mode == OutputMode::kUnpremultiplied) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) {
            const float v = one_nan(finite_colour(colour[i]) / (k[i] < share[i] ? share[i] : k[i]));
            out[i] = k[i] == 0.0f ? 0.0f : v;
        }
        return;
    }
    const auto left = [&](std::size_t i) {
        return finite_colour(colour[i]) * (k[i] < share[i] ? k[i] / share[i] : 1.0f);
    };
    if (mode == OutputMode::kPremultiplied) {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) out[i] = k[i] == 0.0f ? 0.0f : left(i);
    } else {
#pragma GCC ivdep
        for (std::size_t i = 0; i < n; ++i) {
            const float v = one_nan(left(i) + (1.0f - k[i]) * background[i]);
            const float over = k[i] == 1.0f ? left(i) : v;
            out[i] = k[i] == 0.0f ? background[i] : over;
        }
    }
}

namespace {

constexpr std::size_t kChunk = 256;

// 1 where the region's decoded alpha calls for the tint, 0 elsewhere.
void find_covered(const OverlayParams& params, const float* region, float* covered, std::size_t n) {
    const float pivot = params.pivot;
    if (params.mode == OverlayMode::kScreen) {
        for (std::size_t i = 0; i < n; ++i) covered[i] = decode(region[i], pivot) > 0.0f ? 1.0f : 0.0f;
    } else if (params.mode == OverlayMode::kSubject) {
        for (std::size_t i = 0; i < n; ++i) covered[i] = decode(region[i], pivot) == 0.0f ? 1.0f : 0.0f;
    } else {
        for (std::size_t i = 0; i < n; ++i) covered[i] = 0.0f;
    }
}

}  // namespace

void overlay(const OverlayParams& params, const float* region, const std::array<const float*, 3>& fg,
             const std::array<float*, 3>& out, std::size_t n) {
    const float a = params.colour[3];
    const float rest = 1.0f - a;
    float covered[kChunk];
    float grey[kChunk];
    for (std::size_t begin = 0; begin < n; begin += kChunk) {
        const std::size_t count = n - begin < kChunk ? n - begin : kChunk;
        find_covered(params, region + begin, covered, count);
        const float* red = fg[0] + begin;
        const float* green = fg[1] + begin;
        const float* blue = fg[2] + begin;
        for (std::size_t i = 0; i < count; ++i) {
            grey[i] = one_nan((0.3f * red[i] + 0.59f * green[i]) + 0.11f * blue[i]);
        }
        for (std::size_t c = 0; c < 3; ++c) {
            if (out[c] == nullptr) continue;
            const float* value = params.mono ? grey : fg[c] + begin;
            float* to = out[c] + begin;
            const float tint = a * params.colour[c];
#pragma GCC ivdep
            for (std::size_t i = 0; i < count; ++i) {
                to[i] = covered[i] != 0.0f ? one_nan(rest * value[i] + tint) : value[i];
            }
        }
    }
}

void holdout_colour(const float* holdout, const float* fg, float* out, std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float h = holdout[i];
        const float v = one_nan(h * fg[i] + (1.0f - h) * out[i]);
        out[i] = h != 0.0f ? v : out[i];
    }
}

void holdout_alpha(const float* holdout, float* out, std::size_t n) {
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) out[i] = kernel::max_of(holdout[i], out[i]);
}

}  // namespace LANES
