#include "lanes/ForPacks.h"
#include "lanes/KernelMath.h"
#include "stages/ProcessedForegroundKernel.h"

namespace LANES {

using namespace kernel;

namespace {

// One channel: `c` as it came, without `veil`, the backing's share in it, where there is some.
[[gnu::always_inline]] inline Floats unveiled(Floats matte, Floats c, Doubles veil) {
    return choose(matte > 0.0f, clamp_to(0.0f, 255.0f, narrow(wide(c) - veil)), c);
}

[[gnu::always_inline]] inline Floats opacity_of(Floats matte) {
    return choose(matte > 0.0f, narrow(255.0 - cap_at(255.0, wide(matte))), 255.0f);
}

// `blackout` tells which pixels are certain backing, veil(from, role, share of the matte) what to take out.
template <std::size_t kIn, class Blackout, class Veil>
[[gnu::always_inline]] inline void unveil(const float* const (&in)[kIn], const RoleOutput& out, float* alpha,
                                          std::size_t n, const Blackout& blackout, const Veil& veil) {
    for_packs(in, {out.role0, out.role1, out.primary, alpha}, n, [=](const Inputs& from, const Outputs& to) {
        const Floats matte = from[3];
        const auto black = blackout(from);
        if (all_of(black)) {
            for (int c = 0; c < 4; ++c) to.put(c, 0.0f);
            return;
        }
        const Doubles k = wide(matte) * kByte;
        for (int role = 0; role < 3; ++role) {
            to.put(role, choose(black, 0.0f, one_nan(unveiled(matte, from[role], veil(from, role, k)))));
        }
        to.put(3, choose(black, 0.0f, opacity_of(matte)));
    });
}

}  // namespace

void unveil_constant(const VeilParams& params, const RolePixels& fg, const VeilMattes& mattes,
                     const RoleOutput& out, float* alpha, std::size_t n) {
    const double veils[3] = {params.share0 * params.backing0, params.share1 * params.backing1,
                             params.shareP * params.backingP};
    const auto veil = [=](const Inputs&, int role, Doubles k) { return k * veils[role]; };
    const float* const in[] = {fg.role0, fg.role1, fg.primary, mattes.matte, mattes.pre_matte};
    if (params.use_pre_matte) {
        unveil(
            in, out, alpha, n, [](const Inputs& from) { return from[4] != 0.0f; }, veil);
    } else {
        unveil(
            in, out, alpha, n, [](const Inputs&) { return Floats(0.0f) != 0.0f; }, veil);
    }
}

void unveil_clean_plate(const VeilParams& params, const RolePixels& fg, const RolePixels& plate,
                        const VeilMattes& mattes, const RoleOutput& out, float* alpha, std::size_t n) {
    const double shares[3] = {params.share0, params.share1, params.shareP};
    unveil(
        {fg.role0, fg.role1, fg.primary, mattes.matte, mattes.pre_matte, plate.role0, plate.role1,
         plate.primary},
        out, alpha, n, [](const Inputs& from) { return from[4] != 0.0f; },
        [=](const Inputs& from, int role, Doubles k) { return wide(from[5 + role]) * k * shares[role]; });
}

}  // namespace LANES
