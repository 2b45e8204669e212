#include "unmix/FloatMath.h"
#include "unmix/UnknownKernel.h"

namespace LANES {

namespace {

using kernel::larger;

// How far the mean over 3 x 3 pixels is off the backing.
[[gnu::always_inline]] inline float off(const float* low, const float* here, const float* high,
                                        float backing) {
    const float left = (low[-1] + here[-1]) + high[-1];
    const float middle = (low[0] + here[0]) + high[0];
    const float right = (low[1] + here[1]) + high[1];
    const float beyond = ((left + middle) + right) * (1.0f / 9.0f) - backing;
    return beyond < 0.0f ? -beyond : beyond;
}

}  // namespace

void odd_pixels(const OddParams& params, const std::array<std::array<const float*, 3>, 3>& plate,
                const std::array<const float*, 3>& backing, float* __restrict odd, std::size_t n) {
    const auto [low0, here0, high0] = plate[0];
    const auto [low1, here1, high1] = plate[1];
    const auto [low2, here2, high2] = plate[2];
    const auto [b0, b1, b2] = backing;
    const auto [noise0, noise1, noise2] = params.noise;
    const float share = params.share;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float tolerance = share * larger(larger(b0[i], b1[i]), b2[i]);
        const float off0 = off(low0 + i, here0 + i, high0 + i, b0[i]) - noise0;
        const float off1 = off(low1 + i, here1 + i, high1 + i, b1[i]) - noise1;
        const float off2 = off(low2 + i, here2 + i, high2 + i, b2[i]) - noise2;
        odd[i] = larger(larger(off0, off1), off2) > tolerance ? 1.0f : 0.0f;
    }
}

void mostly_odd(const std::array<const float*, 3>& odd, std::uint8_t* __restrict out, std::size_t n) {
    const float* const a = odd[0];
    const float* const b = odd[1];
    const float* const c = odd[2];
    for (std::size_t i = 0; i < n; ++i) {
        const float sum =
            ((a[i] + a[i + 1]) + a[i + 2]) + ((b[i] + b[i + 1]) + b[i + 2]) + ((c[i] + c[i + 1]) + c[i + 2]);
        out[i] = sum > 2.7f ? 1 : 0;
    }
}

}  // namespace LANES
