#include "stages/ProcessedForegroundKernel.h"

#include "stages/KernelMath.h"

using namespace kernel;

namespace {

double wide(float v) {
    return static_cast<double>(v);
}

// One channel of a pixel: `c` as it came, `cut` with the backing's share taken out.
float unveiled(bool blackout, float matte, float c, double cut) {
    const float clamped = clamp_to(0.0f, 255.0f, static_cast<float>(cut));
    const float colour = matte > 0.0f ? clamped : c;
    return blackout ? 0.0f : colour;
}

float opacity(bool blackout, float matte) {
    const float through = 255.0f - cap_at(255.0f, matte);
    const float alpha = matte > 0.0f ? through : 255.0f;
    return blackout ? 0.0f : alpha;
}

}  // namespace

VeilParams veil_params(const ControlBlock& controls) {
    const ControlTriple veiling = controls.get(controls::kBgVeiling);
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto level = [&](std::size_t role) { return wide(static_cast<float>(backing[role])); };
    return {veiling[0] / 100.0,
            veiling[1] / 100.0,
            veiling[2] / 100.0,
            level(0),
            level(1),
            level(2),
            controls.get(controls::kScreenCorrect) != 0};
}

void unveil_constant(const VeilParams& params, const RolePixels& fg, const VeilMattes& mattes,
                     const RoleOutput& out, float* alpha, std::size_t n) {
    const double veil0 = params.share0 * params.backing0;
    const double veil1 = params.share1 * params.backing1;
    const double veilP = params.shareP * params.backingP;
    float* __restrict out0 = out.role0;
    float* __restrict out1 = out.role1;
    float* __restrict outP = out.primary;
    float* __restrict outA = alpha;
    const bool use_pre_matte = params.use_pre_matte;
    for (std::size_t i = 0; i < n; ++i) {
        const float m = mattes.matte[i];
        const bool blackout = use_pre_matte & (mattes.pre_matte[i] != 0.0f);
        const double k = wide(m) * kByte;
        out0[i] = unveiled(blackout, m, fg.role0[i], wide(fg.role0[i]) - k * veil0);
        out1[i] = unveiled(blackout, m, fg.role1[i], wide(fg.role1[i]) - k * veil1);
        outP[i] = unveiled(blackout, m, fg.primary[i], wide(fg.primary[i]) - k * veilP);
        outA[i] = opacity(blackout, m);
    }
}

void unveil_clean_plate(const VeilParams& params, const RolePixels& fg, const RolePixels& plate,
                        const VeilMattes& mattes, const RoleOutput& out, float* alpha, std::size_t n) {
    // Not share times plate first: the two products round in this order.
    const auto cut = [](float c, float backing, double k, double share) {
        return wide(c) - wide(backing) * k * share;
    };
    float* __restrict out0 = out.role0;
    float* __restrict out1 = out.role1;
    float* __restrict outP = out.primary;
    float* __restrict outA = alpha;
    for (std::size_t i = 0; i < n; ++i) {
        const float m = mattes.matte[i];
        const bool blackout = mattes.pre_matte[i] != 0.0f;
        const double k = wide(m) * kByte;
        out0[i] = unveiled(blackout, m, fg.role0[i], cut(fg.role0[i], plate.role0[i], k, params.share0));
        out1[i] = unveiled(blackout, m, fg.role1[i], cut(fg.role1[i], plate.role1[i], k, params.share1));
        outP[i] =
            unveiled(blackout, m, fg.primary[i], cut(fg.primary[i], plate.primary[i], k, params.shareP));
        outA[i] = opacity(blackout, m);
    }
}
