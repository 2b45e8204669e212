#include "keyer/OutputKernel.h"

#include <limits>

namespace {

constexpr float kByte = 0.003921569f;

// Ordered so that a NaN takes the straight line and comes out as it went in.
inline float decode_sample(float v, float pivot) {
    const float s = v * kByte;
    const float t = (s - pivot) / (1.0f - pivot);
    const float bent = t / (1.0f - t) + pivot;
    const float above = s >= 1.0f ? std::numeric_limits<float>::infinity() : bent;
    return s > pivot ? above : s;
}

}  // namespace

float decode(float v, float pivot) {
    return decode_sample(v, pivot);
}

void opacity(const float* matte, float* k, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const float v = 1.0f - decode_sample(matte[i], kOutputPivot);
        const float floored = v < 0.0f ? 0.0f : v;
        k[i] = floored > 1.0f ? 1.0f : floored;
    }
}

void output_colour(OutputMode mode, const float* colour, const float* background, const float* k, float* out,
                   std::size_t n) {
    switch (mode) {
        case OutputMode::kPremultiplied:
            for (std::size_t i = 0; i < n; ++i) out[i] = decode_sample(colour[i], kOutputPivot) * k[i];
            return;
        case OutputMode::kUnpremultiplied:
            for (std::size_t i = 0; i < n; ++i) out[i] = decode_sample(colour[i], kOutputPivot);
            return;
        case OutputMode::kComposite:
            break;
    }
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = decode_sample(colour[i], kOutputPivot) * k[i] + (1.0f - k[i]) * background[i];
    }
}

void overlay(const OverlayParams& params, const float* region, const std::array<const float*, 3>& fg,
             const std::array<float*, 3>& out, std::size_t n) {
    const float a = params.colour[3];
    const bool screen = params.mode == OverlayMode::kScreen;
    const bool subject = params.mode == OverlayMode::kSubject;
    for (std::size_t i = 0; i < n; ++i) {
        const float m = decode_sample(region[i], params.pivot);
        const bool covered = (screen && m > 0.0f) || (subject && m == 0.0f);
        const float grey = (0.3f * fg[0][i] + 0.59f * fg[1][i]) + 0.11f * fg[2][i];
        for (std::size_t c = 0; c < 3; ++c) {
            if (out[c] == nullptr) continue;
            const float value = params.mono ? grey : fg[c][i];
            out[c][i] = covered ? (1.0f - a) * value + a * params.colour[c] : value;
        }
    }
}

void holdout_colour(const float* holdout, const float* fg, float* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const float h = holdout[i];
        out[i] = h != 0.0f ? h * fg[i] + (1.0f - h) * out[i] : out[i];
    }
}

void holdout_alpha(const float* holdout, float* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = holdout[i] > out[i] ? holdout[i] : out[i];
}
