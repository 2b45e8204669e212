#include "lanes/ForPacks.h"
#include "screen/ClearFrameKernel.h"
#include "stages/KernelMath.h"

using namespace kernel;

namespace LANES {

namespace {

template <class Level>
[[gnu::always_inline]] inline Level brightness(Level role0, Level role1, Level primary) {
    return primary + (role1 + role0);
}

[[gnu::always_inline]] inline float brightness_at(const RolePixels& pixels, std::size_t i) {
    return brightness(pixels.role0[i], pixels.role1[i], pixels.primary[i]);
}

// From the brightness of the foreground and of the clear frame, which is not 0.
[[gnu::always_inline]] inline Floats coverage_of(Floats f, Floats s) {
    const Doubles q = (wide(f) * 255.0 + wide(s * 0.5f)) / wide(s);
    return one_nan(narrow(255.0 - cap_at(255.0, q)));
}

void correct(const float* fg, const float* plate, const float* clear, float* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const float v = (plate[i] * fg[i] + clear[i] * 0.5f) / clear[i];
        out[i] = kernel::one_nan(cap_at(255.0f, v));
    }
}

// Measures every pixel, and tells whether some clear-frame pixel may be black: coverage there means nothing.
bool measure(const RolePixels& fg, const RolePixels& clear, float* coverage, std::size_t n) {
    bool some_black = false;
    for_packs({fg.role0, fg.role1, fg.primary, clear.role0, clear.role1, clear.primary}, {coverage}, n,
              [&some_black](const Inputs& from, const Outputs& to) {
                  const Floats f = brightness(from[0], from[1], from[2]);
                  const Floats s = brightness(from[3], from[4], from[5]);
                  to.put(0, coverage_of(f, s));
                  some_black |= !all_of(s != 0.0f);
              });
    return some_black;
}

}  // namespace

float clear_frame_last_coverage(const RolePixels& fg, const RolePixels& clear, std::size_t n) {
    for (std::size_t i = n; i-- > 0;) {
        if (brightness_at(clear, i) == 0.0f) continue;
        float coverage = 0.0f;
        measure({fg.role0 + i, fg.role1 + i, fg.primary + i},
                {clear.role0 + i, clear.role1 + i, clear.primary + i}, &coverage, 1);
        return coverage;
    }
    return kFirstCoverage;
}

void clear_frame(const RolePixels& fg, const RolePixels& plate, const RolePixels& clear, float before,
                 const RoleOutput& out, float* coverage, std::size_t n) {
    correct(fg.role0, plate.role0, clear.role0, out.role0, n);
    correct(fg.role1, plate.role1, clear.role1, out.role1, n);
    correct(fg.primary, plate.primary, clear.primary, out.primary, n);
    if (!measure(fg, clear, coverage, n)) return;
    float last = before;
    for (std::size_t i = 0; i < n; ++i) {
        if (brightness_at(clear, i) != 0.0f) last = coverage[i];
        coverage[i] = last;
    }
}

}  // namespace LANES
