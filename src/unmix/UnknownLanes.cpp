#include "unmix/UnknownKernel.h"

namespace LANES {

namespace {

[[gnu::always_inline]] inline float larger(float a, float b) {
    return a > b ? a : b;
}

}  // namespace

void odd_pixels(const OddParams& params, const std::array<std::array<const float*, 3>, 3>& plate,
                const std::array<const float*, 3>& backing, float* __restrict odd, std::size_t n) {
    const OddParams p = params;
    const float* const b0 = backing[0];
    const float* const b1 = backing[1];
    const float* const b2 = backing[2];
    for (std::size_t i = 0; i < n; ++i) odd[i] = p.share * larger(larger(b0[i], b1[i]), b2[i]);
    for (std::size_t c = 0; c < 3; ++c) {
        const float* const below = plate[c][0];
        const float* const here = plate[c][1];
        const float* const above = plate[c][2];
        const float* const b = backing[c];
        const float noise = p.noise[c];
        for (std::size_t i = 0; i < n; ++i) {
            const float left = (below[i] + here[i]) + above[i];
            const float middle = (below[i + 1] + here[i + 1]) + above[i + 1];
            const float right = (below[i + 2] + here[i + 2]) + above[i + 2];
            const float off = ((left + middle) + right) * (1.0f / 9.0f) - b[i];
            const float size = off < 0.0f ? -off : off;
            // A tolerance that one channel overstepped stays below all others.
            odd[i] = size - noise > odd[i] ? -1e30f : odd[i];
        }
    }
    for (std::size_t i = 0; i < n; ++i) odd[i] = odd[i] < -1e29f ? 1.0f : 0.0f;
}

void mostly_odd(const std::array<const float*, 3>& odd, std::uint8_t* __restrict out, std::size_t n) {
    const float* const a = odd[0];
    const float* const b = odd[1];
    const float* const c = odd[2];
    for (std::size_t i = 0; i < n; ++i) {
        const float sum = ((a[i] + a[i + 1]) + a[i + 2]) + ((b[i] + b[i + 1]) + b[i + 2]) +
                          ((c[i] + c[i + 1]) + c[i + 2]);
        out[i] = sum > 2.7f ? 1 : 0;
    }
}

void grow_mask(const std::array<const std::uint8_t*, 3>& rows, std::uint8_t* __restrict out, std::size_t n) {
    const std::uint8_t* const below = rows[0] + 1;
    const std::uint8_t* const here = rows[1];
    const std::uint8_t* const above = rows[2] + 1;
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = static_cast<std::uint8_t>(below[i] | above[i] | here[i] | here[i + 1] | here[i + 2]);
    }
}

}  // namespace LANES
