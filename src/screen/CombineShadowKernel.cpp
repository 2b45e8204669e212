#include "screen/CombineShadowKernel.h"

#include "screen/OneNaN.h"
#include "stages/KernelMath.h"

using namespace kernel;

namespace {

// The double nearest to 1/255, unlike kByte.
constexpr double kByteDouble = 0.00392156862745098;

struct Levels {
    double low, above_low, range, density;
};

Levels levels_of(const CombineShadowParams& params) {
    const auto range = static_cast<std::int32_t>(static_cast<std::uint32_t>(params.high) -
                                                 static_cast<std::uint32_t>(params.low));
    return {static_cast<double>(params.low), 255.0 - params.low, static_cast<double>(range), params.density};
}

// The share of light that the shadow leaves, 0 to 1.
double light(const Levels& k, float shadow) {
    const double s = clamp_to(0.0, 255.0, 255.0 - static_cast<double>(shadow));
    const double remapped = ((s - k.low) * k.above_low) / k.range + k.low;
    const double level = cap_at(255.0, s > k.low ? remapped : s);
    const double t = floor_at(0.0, 255.0 - ((255.0 - level) * k.density) / 100.0);
    return t * kByteDouble;
}

float tinted(double tint, double weight, float c) {
    return one_nan(static_cast<float>(cap_at(255.0, tint * weight + static_cast<double>(c))));
}

}  // namespace

CombineShadowParams combine_shadow_params(const ControlBlock& controls) {
    return {controls.get(controls::kShadowLow), controls.get(controls::kShadowHigh),
            static_cast<double>(controls.get(controls::kShadowDensity)), controls.get(controls::kShadowTint)};
}

void combine_shadow(const CombineShadowParams& params, const RolePixels& fg, const float* matte,
                    const float* shadow, const RoleOutput& out, float* alpha, std::size_t n) {
    const Levels levels = levels_of(params);
    const double tint0 = params.tint[0];
    const double tint1 = params.tint[1];
    const double tintP = params.tint[2];
    const float* c0 = fg.role0;
    const float* c1 = fg.role1;
    const float* cP = fg.primary;
    float* out0 = out.role0;
    float* out1 = out.role1;
    float* outP = out.primary;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const double u = light(levels, shadow[i]);
        const auto m = static_cast<double>(matte[i]);
        alpha[i] = one_nan(static_cast<float>(m * u));
        const double w = (1.0 - u) * m * kByteDouble;
        out0[i] = tinted(tint0, w, c0[i]);
        out1[i] = tinted(tint1, w, c1[i]);
        outP[i] = tinted(tintP, w, cP[i]);
    }
}
