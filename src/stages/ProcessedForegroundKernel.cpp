#include "stages/ProcessedForegroundKernel.h"

#include "stages/KernelMath.h"

using namespace kernel;

namespace {

double wide(float v) {
    return static_cast<double>(v);
}

double rounded(double v) {
    return wide(static_cast<float>(v));
}

// One channel of a pixel: `c` as it came, `cut` with the backing's share taken out. Like all comparisons of
// the loops in double: selections by comparisons of one width vectorise.
float unveiled(double pre_matte, double matte, double c, double cut) {
    const double clamped = clamp_to(0.0, 255.0, rounded(cut));
    const double colour = matte > 0.0 ? clamped : c;
    return static_cast<float>(pre_matte != 0.0 ? 0.0 : colour);
}

float opacity(double pre_matte, double matte) {
    const double through = 255.0 - cap_at(255.0, matte);
    const double alpha = matte > 0.0 ? through : 255.0;
    return static_cast<float>(pre_matte != 0.0 ? 0.0 : alpha);
}

enum class Backing { kConstant, kPlate };

template <Backing kBacking, bool kBlackout>
void unveil(const VeilParams& params, const RolePixels& fg, const RolePixels& plate, const VeilMattes& mattes,
            const RoleOutput& out, float* alpha, std::size_t n) {
    const VeilParams p = params;
    const double veil0 = p.share0 * p.backing0;
    const double veil1 = p.share1 * p.backing1;
    const double veilP = p.shareP * p.backingP;
    // `k` is the matte as a fraction. The products round in the order that they have here.
    const auto veil = [](double k, float backing, double share, double constant) {
        return kBacking == Backing::kPlate ? wide(backing) * k * share : k * constant;
    };
    const float* in0 = fg.role0;
    const float* in1 = fg.role1;
    const float* inP = fg.primary;
    const float* b0 = plate.role0;
    const float* b1 = plate.role1;
    const float* bP = plate.primary;
    const float* matte = mattes.matte;
    const float* pre_matte = mattes.pre_matte;
    float* out0 = out.role0;
    float* out1 = out.role1;
    float* outP = out.primary;
    float* outA = alpha;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const double m = wide(matte[i]);
        const double pre = kBlackout ? wide(pre_matte[i]) : 0.0;
        const double k = m * kByte;
        const double c0 = wide(in0[i]);
        const double c1 = wide(in1[i]);
        const double cP = wide(inP[i]);
        out0[i] = unveiled(pre, m, c0, c0 - veil(k, b0[i], p.share0, veil0));
        out1[i] = unveiled(pre, m, c1, c1 - veil(k, b1[i], p.share1, veil1));
        outP[i] = unveiled(pre, m, cP, cP - veil(k, bP[i], p.shareP, veilP));
        outA[i] = opacity(pre, m);
    }
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
    if (params.use_pre_matte) {
        unveil<Backing::kConstant, true>(params, fg, fg, mattes, out, alpha, n);
    } else {
        unveil<Backing::kConstant, false>(params, fg, fg, mattes, out, alpha, n);
    }
}

void unveil_clean_plate(const VeilParams& params, const RolePixels& fg, const RolePixels& plate,
                        const VeilMattes& mattes, const RoleOutput& out, float* alpha, std::size_t n) {
    unveil<Backing::kPlate, true>(params, fg, plate, mattes, out, alpha, n);
}
