#include "screen/SubRegionKernel.h"

#include "stages/KernelMath.h"

using namespace kernel;

namespace {

// What a secondary channel's excess over the backing is measured with, once a span.
struct Minor {
    float threshold, backing, rest;  // rest: backing above the threshold
    double divisor;
};

Minor minor_of(std::int32_t primary, std::int32_t backing, double darks) {
    const double p = primary;
    const double difference =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(primary) - static_cast<std::uint32_t>(backing));
    const double threshold = (difference * darks / p) * 255.0;
    const auto t = static_cast<float>(threshold);
    const auto b = static_cast<float>(backing);
    return {t, b, b - t, (1.0 - threshold / 255.0) * p - (static_cast<double>(backing) - threshold)};
}

struct Excess {
    double value, whole;  // whole: its integer part
};

Excess excess(const Minor& minor, float primary, float c, float cp) {
    const float numerator = (c - minor.threshold) * primary - cp * minor.rest;
    const double v = static_cast<double>(numerator) / minor.divisor;
    const double whole = to_int(v);
    return {v > 0.0 ? v : 0.0, v > 0.0 ? whole : 0.0};  // a NaN becomes 0 too
}

}  // namespace

SubRegionParams sub_region_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {controls.get(controls::kBackingColor), percent(controls::kFilmBrights),
            percent(controls::kFilmDarks), percent(controls::kInnerCoolDensity),
            percent(controls::kInnerWarmDensity)};
}

void sub_region(const SubRegionParams& params, const RolePixels& fg, float* alpha, std::size_t n) {
    const Minor minor0 = minor_of(params.backing[2], params.backing[0], params.darks);
    const Minor minor1 = minor_of(params.backing[2], params.backing[1], params.darks);
    const auto primary = static_cast<float>(params.backing[2]);
    const double p = params.backing[2];
    const SubRegionParams k = params;
    const float* c0 = fg.role0;
    const float* c1 = fg.role1;
    const float* cP = fg.primary;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float cp = cP[i];
        const Excess v1 = excess(minor1, primary, c1[i], cp);
        const Excess v0 = excess(minor0, primary, c0[i], cp);
        const double m = min_of(v1.whole, v0.whole);
        const double x1 = (static_cast<double>(cp) - v1.value * k.brights - (v1.value - m) * k.cool) / p;
        const double x0 = (static_cast<double>(cp) - v0.value * k.brights - (v0.value - m) * k.warm) / p;
        alpha[i] = static_cast<float>(min_of(x1, x0) < 0.0 ? 255.0 : 0.0);
    }
}
