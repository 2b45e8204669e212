#include "lanes/ForPacks.h"
#include "lanes/KernelMath.h"
#include "screen/SubRegionKernel.h"

using namespace kernel;

namespace LANES {

namespace {

// What a secondary channel's excess over the backing is measured with, once a span.
struct Minor {
    float threshold, rest;  // rest: backing above the threshold
    double divisor;
};

Minor minor_of(std::int32_t primary, std::int32_t backing, double darks) {
    const double p = primary;
    const double threshold = (kernel::minus(primary, backing) * darks / p) * 255.0;
    const auto t = static_cast<float>(threshold);
    return {t, static_cast<float>(backing) - t,
            (1.0 - threshold / 255.0) * p - (static_cast<double>(backing) - threshold)};
}

struct Excess {
    Doubles value, whole;  // whole: its integer part
};

[[gnu::always_inline]] inline Excess excess(const Minor& minor, float primary, Floats c, Floats cp) {
    const Floats numerator = (c - minor.threshold) * primary - cp * minor.rest;
    const Doubles v = max_of(wide(numerator) / minor.divisor, 0.0);  // a NaN becomes 0 too
    return {v, whole(v)};
}

}  // namespace

void sub_region(const SubRegionParams& params, const RolePixels& fg, float* alpha, std::size_t n) {
    const Minor minor0 = minor_of(params.backing[2], params.backing[0], params.darks);
    const Minor minor1 = minor_of(params.backing[2], params.backing[1], params.darks);
    const auto primary = static_cast<float>(params.backing[2]);
    // The test is for the sign of what is left over the primary; no quotient is small enough to vanish.
    const double sign = params.backing[2] < 0 ? -1.0 : 1.0;
    const SubRegionParams k = params;
    for_packs({fg.role0, fg.role1, fg.primary}, {alpha}, n, [=](const Inputs& from, const Outputs& to) {
        const Floats cp = from[2];
        const Excess v1 = excess(minor1, primary, from[1], cp);
        const Excess v0 = excess(minor0, primary, from[0], cp);
        const Doubles m = min_of(v1.whole, v0.whole);
        const Doubles x1 = (wide(cp) - v1.value * k.brights - (v1.value - m) * k.cool) * sign;
        const Doubles x0 = (wide(cp) - v0.value * k.brights - (v0.value - m) * k.warm) * sign;
        to.put(0, narrow(choose(min_of(x1, x0) < 0.0, Doubles(255.0), Doubles(0.0))));
    });
}

}  // namespace LANES
