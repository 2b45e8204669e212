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

double excess(const Minor& minor, float primary, float c, float cp) {
    const float numerator = (c - minor.threshold) * primary - cp * minor.rest;
    const double v = static_cast<double>(numerator) / minor.divisor;
    return v > 0.0 ? v : 0.0;  // a NaN becomes 0 too
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
    for (std::size_t i = 0; i < n; ++i) {
        const float cp = fg.primary[i];
        const double v1 = excess(minor1, primary, fg.role1[i], cp);
        const double v0 = excess(minor0, primary, fg.role0[i], cp);
        const double m = min_of(to_int(v1), to_int(v0));
        const double x1 = (static_cast<double>(cp) - v1 * params.brights - (v1 - m) * params.cool) / p;
        const double x0 = (static_cast<double>(cp) - v0 * params.brights - (v0 - m) * params.warm) / p;
        alpha[i] = min_of(x1, x0) < 0.0 ? 255.0f : 0.0f;
    }
}
