#include "lanes/ForPacks.h"
#include "lanes/KernelMath.h"
#include "screen/CombineShadowKernel.h"

using namespace kernel;

namespace LANES {

namespace {

// The double nearest to 1/255, unlike kByte.
constexpr double kByteDouble = 0.00392156862745098;

struct Levels {
    double low, above_low, range, density;
};

Levels levels_of(const CombineShadowParams& params) {
    const double low = params.low;
    return {low, 255.0 - low, static_cast<double>(kernel::minus(params.high, params.low)), params.density};
}

// The share of light that the shadow leaves, 0 to 1.
[[gnu::always_inline]] inline Doubles light(const Levels& k, Floats shadow) {
    const Doubles s = clamp_to(0.0, 255.0, 255.0 - wide(shadow));
    const Doubles remapped = ((s - k.low) * k.above_low) / k.range + k.low;
    const Doubles level = cap_at(255.0, choose(s > k.low, remapped, s));
    const Doubles t = floor_at(0.0, 255.0 - ((255.0 - level) * k.density) / 100.0);
    return t * kByteDouble;
}

[[gnu::always_inline]] inline Floats tinted(double tint, Doubles weight, Floats c) {
    return one_nan(narrow(cap_at(255.0, tint * weight + wide(c))));
}

}  // namespace

void combine_shadow(const CombineShadowParams& params, const RolePixels& fg, const float* matte,
                    const float* shadow, const RoleOutput& out, float* alpha, std::size_t n) {
    const Levels levels = levels_of(params);
    const double tint0 = params.tint[0];
    const double tint1 = params.tint[1];
    const double tintP = params.tint[2];
    for_packs({fg.role0, fg.role1, fg.primary, matte, shadow}, {out.role0, out.role1, out.primary, alpha}, n,
              [=](const Inputs& from, const Outputs& to) {
                  const Doubles u = light(levels, from[4]);
                  const Doubles m = wide(from[3]);
                  to.put(3, one_nan(narrow(m * u)));
                  const Doubles w = (1.0 - u) * m * kByteDouble;
                  to.put(0, tinted(tint0, w, from[0]));
                  to.put(1, tinted(tint1, w, from[1]));
                  to.put(2, tinted(tintP, w, from[2]));
              });
}

}  // namespace LANES
