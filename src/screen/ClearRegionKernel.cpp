#include "screen/ClearRegionKernel.h"

#include "stages/KernelMath.h"

using namespace kernel;

namespace {

constexpr auto kByteSingle = static_cast<float>(kByte);

// A secondary channel of the backing: its level with the tolerance added, and its dark threshold.
struct Minor {
    double level, dark, rest;
};

Minor minor_of(double primary, double level, double darks) {
    const double dark = ((primary - level) * darks) / primary;
    return {level, dark, level - dark};
}

double one_if(bool passed) {
    return passed ? 1.0 : 0.0;
}

inline double darker_passes(const Minor& minor, double backing, double primary, double c) {
    return one_if(c < ((backing - primary) * minor.dark) / backing + (primary * minor.level) / backing);
}

inline double brighter_passes(const Minor& minor, double backing, double primary, double c, double brights) {
    const double content =
        ((c - minor.dark) * backing - primary * minor.rest) / ((1.0 - minor.dark) * backing - minor.rest);
    return one_if((primary - content * brights) / backing >= 1.0);
}

// Where the primary is exactly the backing's, both tests are made and either may decide. Every test is made
// for every pixel and counts as a double 1 or 0, so that loops compile without branches.
inline float decide(const ClearRegionParams& k, double backing, const Minor& minor0, const Minor& minor1,
                    float c0, float c1, float cp) {
    const auto p = static_cast<double>(cp * kByteSingle);
    const auto d1 = static_cast<double>(c1 * kByteSingle);
    const auto d0 = static_cast<double>(c0 * kByteSingle);
    const double darker =
        one_if(p <= backing) + darker_passes(minor1, backing, p, d1) + darker_passes(minor0, backing, p, d0);
    const double brighter = one_if(backing <= p) + brighter_passes(minor1, backing, p, d1, k.brights1) +
                            brighter_passes(minor0, backing, p, d0, k.brights0);
    return static_cast<float>(max_of(darker, brighter) == 3.0 ? 255.0 : 0.0);
}

void decide_constant(const ClearRegionParams& params, const RolePixels& fg, float* alpha, std::size_t n) {
    const ClearRegionParams k = params;
    const auto level = [&](std::size_t role) {
        return (static_cast<double>(k.backing[role]) + static_cast<double>(k.tolerance[role])) * kByte;
    };
    const double backing = k.backing[2] * kByte;
    const Minor minor1 = minor_of(backing, level(1), k.darks1);
    const Minor minor0 = minor_of(backing, level(0), k.darks0);
    const float* c0 = fg.role0;
    const float* c1 = fg.role1;
    const float* cP = fg.primary;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        alpha[i] = decide(k, backing, minor0, minor1, c0[i], c1[i], cP[i]);
    }
}

void decide_against_plate(const ClearRegionParams& params, const RolePixels& fg, const RolePixels& plate,
                          float* alpha, std::size_t n) {
    const ClearRegionParams k = params;
    const auto t0 = static_cast<float>(k.tolerance[0]);
    const auto t1 = static_cast<float>(k.tolerance[1]);
    const float* c0 = fg.role0;
    const float* c1 = fg.role1;
    const float* cP = fg.primary;
    const float* b0 = plate.role0;
    const float* b1 = plate.role1;
    const float* bP = plate.primary;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const auto backing = static_cast<double>(bP[i] * kByteSingle);
        const Minor minor1 = minor_of(backing, static_cast<double>((b1[i] + t1) * kByteSingle), k.darks1);
        const Minor minor0 = minor_of(backing, static_cast<double>((b0[i] + t0) * kByteSingle), k.darks0);
        alpha[i] = decide(k, backing, minor0, minor1, c0[i], c1[i], cP[i]);
    }
}

// A NaN in a matte counts as not 0.
void force(const float* matte, float value, float* __restrict alpha, std::size_t n) {
    if (matte == nullptr) return;
    for (std::size_t i = 0; i < n; ++i) alpha[i] = matte[i] != 0.0f ? value : alpha[i];
}

}  // namespace

// "G>R" is the pair for role 1 and "R>G" the one for role 0, whatever colours those are.
ClearRegionParams clear_region_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {controls.get(controls::kBackingColor), controls.get(controls::kScreenTolerance),
            percent(controls::kRotoBrightsGR),     percent(controls::kRotoDarksGR),
            percent(controls::kRotoBrightsRG),     percent(controls::kRotoDarksRG)};
}

void clear_region(const ClearRegionParams& params, const RolePixels& fg, const RolePixels* plate,
                  const ClearRegionMattes& mattes, float* alpha, std::size_t n) {
    if (plate == nullptr) {
        decide_constant(params, fg, alpha, n);
    } else {
        decide_against_plate(params, fg, *plate, alpha, n);
    }
    // The strongest last.
    force(mattes.garbage, 255.0f, alpha, n);
    force(mattes.crude, 255.0f, alpha, n);
    force(mattes.holdout, 0.0f, alpha, n);
}
