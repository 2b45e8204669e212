#include <cstdint>

#include "lanes/KernelMath.h"
#include "screen/ClearFrameKernel.h"

using namespace kernel;

namespace LANES {

namespace {

[[gnu::always_inline]] inline float brightness(float role0, float role1, float primary) {
    return primary + (role1 + role0);
}

[[gnu::always_inline]] inline float brightness(const RolePixels& pixels, std::size_t i) {
    return brightness(pixels.role0[i], pixels.role1[i], pixels.primary[i]);
}

// From the brightness of the foreground and of the clear frame, which is not 0.
[[gnu::always_inline]] inline float coverage_of(float f, float s) {
    const double q = (wide(f) * 255.0 + wide(s * 0.5f)) / wide(s);
    return one_nan(narrow(255.0 - cap_at(255.0, q)));
}

void correct(const float* fg, const float* plate, const float* clear, float* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const float v = (plate[i] * fg[i] + clear[i] * 0.5f) / clear[i];
        out[i] = one_nan(cap_at(255.0f, v));
    }
}

// Measures every pixel, and returns how many clear-frame pixels are black: theirs mean nothing.
std::int32_t measure(const RolePixels& fg, const RolePixels& clear, float* coverage, std::size_t n) {
    const float* f0 = fg.role0;
    const float* f1 = fg.role1;
    const float* fP = fg.primary;
    const float* s0 = clear.role0;
    const float* s1 = clear.role1;
    const float* sP = clear.primary;
    std::int32_t black = 0;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float s = brightness(s0[i], s1[i], sP[i]);
        coverage[i] = coverage_of(brightness(f0[i], f1[i], fP[i]), s);
        black += static_cast<std::int32_t>(s == 0.0f);
    }
    return black;
}

}  // namespace

float clear_frame_last_coverage(const RolePixels& fg, const RolePixels& clear, std::size_t n) {
    for (std::size_t i = n; i-- > 0;) {
        const float s = brightness(clear, i);
        if (s != 0.0f) return coverage_of(brightness(fg, i), s);  // a NaN counts as not 0
    }
    return kFirstCoverage;
}

void clear_frame(const RolePixels& fg, const RolePixels& plate, const RolePixels& clear, float before,
                 const RoleOutput& out, float* coverage, std::size_t n) {
    correct(fg.role0, plate.role0, clear.role0, out.role0, n);
    correct(fg.role1, plate.role1, clear.role1, out.role1, n);
    correct(fg.primary, plate.primary, clear.primary, out.primary, n);
    if (measure(fg, clear, coverage, n) == 0) return;
    float last = before;
    for (std::size_t i = 0; i < n; ++i) {
        if (brightness(clear, i) != 0.0f) last = coverage[i];
        coverage[i] = last;
    }
}

}  // namespace LANES
