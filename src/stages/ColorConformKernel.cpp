#include "stages/ColorConformKernel.h"

#include <algorithm>
#include <numbers>

#include "stages/KernelMath.h"
#include "stages/LogExp.h"

using namespace kernel;

namespace {

constexpr double kLog256 = 8.0 * std::numbers::ln2;
constexpr double kCurveLimit = 8323072.0;

double wide(float v) {
    return static_cast<double>(v);
}

double rounded(double v) {
    return wide(static_cast<float>(v));
}

double bent(double bend, double x) {
    return ((1.0 - x) * bend + x) * x;
}

ToneCurve tone_curve(std::int32_t darks, std::int32_t brights, std::int32_t mid_tones) {
    const double low = -(darks / 100.0);
    const double high = 1.0 / std::max(0.01, brights / 100.0) + low;
    const double width = high - low;
    double middle = 0.5 - mid_tones / 100.0 * 0.66;
    if (middle < 0.0) {
        middle = 0.0001;
    } else if (middle > 1.0) {
        middle = 0.9999;
    }
    const double bend = (0.5 / middle - middle) / (1.0 - middle);
    return {low, width, bend, bent(bend, (0.5 - low) / width)};
}

// Role 0, role 1, primary. Single-precision values, held as doubles: selections by comparisons of one width
// vectorise.
struct Colour {
    double r, g, b;
};

// `t` is the pixel's transparency, 0 to 1.
double toned(const ToneCurve& curve, double t, float c) {
    const double x = (wide(c / 255.0f) + 0.5 * t - curve.low) / curve.width;
    const double y = bent(curve.bend, x) - curve.grey * t;
    const double limited = floor_at(-kCurveLimit, cap_at(kCurveLimit, y));
    return clamp_to(0.0, 255.0, rounded(limited * 255.0));
}

// A hue of any turn, brought into 0 to 6 with no other rounding than adding or taking away 6 a turn at a time
// would make.
double one_turn(double hue) {
    const double rest = hue - 6.0 * to_int(hue / 6.0);
    return 0.0 > rest ? rest + 6.0 : rest;
}

Colour adjusted(const ConformParams& p, const Colour& c) {
    const double low01 = c.r > c.g ? c.g : c.r;
    const double high01 = c.r > c.g ? c.r : c.g;
    const double middle = high01 > c.b ? c.b : high01;
    const double max = high01 > c.b ? high01 : c.b;
    const double min = low01 > middle ? middle : low01;
    const double mid = low01 > middle ? low01 : middle;

    const double log_min = log_of(min + 1.0);
    const double log_max = log_of(max + 1.0);
    const double range = log_max - log_min;
    const double f = (log_of(mid + 1.0) - log_min) / range;
    // On a tie the later order counts.
    double hue = 0.0;
    hue = (c.r >= c.g) & (c.g >= c.b) ? f : hue;
    hue = (c.g >= c.r) & (c.r >= c.b) ? 2.0 - f : hue;
    hue = (c.g >= c.b) & (c.b >= c.r) ? 2.0 + f : hue;
    hue = (c.b >= c.g) & (c.g >= c.r) ? 4.0 - f : hue;
    hue = (c.b >= c.r) & (c.r >= c.g) ? 4.0 + f : hue;
    hue = (c.r >= c.b) & (c.b >= c.g) ? 6.0 - f : hue;
    hue = range == 0.0 ? 0.0 : hue;

    const double turned = one_turn(hue + p.hue);
    const double top = (log_max / kLog256 + p.value) * kLog256;
    const double bottom = top - range / kLog256 * p.saturation * kLog256;

    double way = turned;
    way = turned >= 1.0 ? 2.0 - turned : way;
    way = turned >= 2.0 ? turned - 2.0 : way;
    way = turned >= 3.0 ? 4.0 - turned : way;
    way = turned >= 4.0 ? turned - 4.0 : way;
    way = turned >= 5.0 ? 6.0 - turned : way;
    const auto level = [](double logarithm) {
        return clamp_to(0.0, 255.0, rounded(exp_of(logarithm) - 1.0));
    };
    const double lo = level(bottom);
    const double hi = level(top);
    const double between = level((top - bottom) * way + bottom);

    const bool first = turned < 1.0;
    const bool second = turned < 2.0;
    const bool third = turned < 3.0;
    const bool fourth = turned < 4.0;
    const bool fifth = turned < 5.0;
    const double r = first ? hi : second ? between : fourth ? lo : fifth ? between : hi;
    const double g = first ? between : third ? hi : fourth ? between : lo;
    const double b = second ? lo : third ? between : fifth ? hi : between;
    return {r, g, b};
}

template <bool kAdjust>
void conform(const ConformParams& params, const RolePixels& in, const float* alpha, const RoleOutput& out,
             std::size_t n) {
    const ConformParams p = params;
    const float* in0 = in.role0;
    const float* in1 = in.role1;
    const float* inP = in.primary;
    const float* inA = alpha;
    float* out0 = out.role0;
    float* out1 = out.role1;
    float* outP = out.primary;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const double t = wide((255.0f - inA[i]) / 255.0f);
        Colour c{toned(p.curves[0], t, in0[i]), toned(p.curves[1], t, in1[i]), toned(p.curves[2], t, inP[i])};
        if constexpr (kAdjust) c = adjusted(p, c);
        out0[i] = static_cast<float>(c.r);
        out1[i] = static_cast<float>(c.g);
        outP[i] = static_cast<float>(c.b);
    }
}

}  // namespace

ConformParams conform_params(const ControlBlock& controls) {
    const ControlTriple darks = controls.get(controls::kColorConformDarks);
    const ControlTriple brights = controls.get(controls::kColorConformBrights);
    const ControlTriple mid_tones = controls.get(controls::kColorConformMidTones);
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };

    ConformParams p{};
    for (std::size_t role = 0; role < 3; ++role) {
        p.curves[role] = tone_curve(darks[role], brights[role], mid_tones[role]);
    }
    const double saturation = percent(controls::kSaturation);
    const double brightness = percent(controls::kBrightness);
    p.hue = percent(controls::kHue);
    p.saturation = exp_of(saturation);
    p.value = brightness / kLog256;
    p.adjust = p.hue != 0.0 || saturation != 0.0 || brightness != 0.0;
    return p;
}

void conform_colour(const ConformParams& params, const RolePixels& in, const float* alpha,
                    const RoleOutput& out, std::size_t n) {
    if (params.adjust) {
        conform<true>(params, in, alpha, out, n);
    } else {
        conform<false>(params, in, alpha, out, n);
    }
}
