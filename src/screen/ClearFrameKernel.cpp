#include "screen/ClearFrameKernel.h"

#include "stages/KernelMath.h"

using namespace kernel;

namespace {

float brightness(const RolePixels& pixels, std::size_t i) {
    return pixels.primary[i] + (pixels.role1[i] + pixels.role0[i]);
}

// A NaN sum counts as not 0.
double ratio(const RolePixels& fg, const RolePixels& clear, std::size_t i, double before) {
    const float s = brightness(clear, i);
    const float f = brightness(fg, i);
    const double q =
        (static_cast<double>(f) * 255.0 + static_cast<double>(s * 0.5f)) / static_cast<double>(s);
    return s != 0.0f ? cap_at(255.0, q) : before;
}

void correct(const float* fg, const float* plate, const float* clear, float* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const float v = (plate[i] * fg[i] + clear[i] * 0.5f) / clear[i];
        out[i] = cap_at(255.0f, v);
    }
}

}  // namespace

bool clear_frame_is_black(const RolePixels& clear) {
    return brightness(clear, 0) == 0.0f;
}

double clear_frame_last_ratio(const RolePixels& fg, const RolePixels& clear, std::size_t n, double before) {
    for (std::size_t i = n; i-- > 0;) {
        if (brightness(clear, i) != 0.0f) return ratio(fg, clear, i, before);
    }
    return before;
}

void clear_frame(const RolePixels& fg, const RolePixels& plate, const RolePixels& clear, double before,
                 const RoleOutput& out, float* coverage, std::size_t n) {
    correct(fg.role0, plate.role0, clear.role0, out.role0, n);
    correct(fg.role1, plate.role1, clear.role1, out.role1, n);
    correct(fg.primary, plate.primary, clear.primary, out.primary, n);
    double q = before;
    for (std::size_t i = 0; i < n; ++i) {
        q = ratio(fg, clear, i, q);
        coverage[i] = static_cast<float>(255.0 - q);
    }
}
