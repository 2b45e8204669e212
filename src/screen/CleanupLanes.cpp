#include "lanes/ForPacks.h"
#include "screen/CleanupKernel.h"
#include "stages/KernelMath.h"

using namespace kernel;

namespace LANES {

namespace {

// How far a pixel is pushed, 0 to 255.
[[gnu::always_inline]] inline Doubles push(const CleanupParams& p, Floats a) {
    const Doubles k = max_of(whole(wide(a - p.threshold)), 0.0);
    return cap_at(255.0, k * p.strength);
}

}  // namespace

void cleanup_colour(const CleanupParams& params, const float* matte, const float* colour, float* out,
                    std::size_t n) {
    const CleanupParams p = params;
    for_packs({matte, colour}, {out}, n, [p](const Inputs& from, const Outputs& to) {
        to.put(0, narrow(wide(from[1]) * (255.0 - push(p, from[0])) / 255.0));
    });
}

void cleanup_matte(const CleanupParams& params, const float* matte, float* out, std::size_t n) {
    const CleanupParams p = params;
    for_packs({matte}, {out}, n, [p](const Inputs& from, const Outputs& to) {
        const Doubles a = wide(from[0]);
        to.put(0, narrow(((255.0 - a) * push(p, from[0])) / 255.0 + a));
    });
}

}  // namespace LANES
