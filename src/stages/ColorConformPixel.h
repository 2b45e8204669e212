// The arithmetic of colour conformance for one pixel or one pack of pixels; see ColorConformKernel.h.
//
// Floats is a single-precision value or pack, Doubles a double-precision one.
#pragma once

#include <numbers>

#include "lanes/KernelMath.h"
#include "lanes/LogExp.h"
#include "stages/ColorConformKernel.h"

namespace kernel {

inline constexpr double kLog256 = 8.0 * std::numbers::ln2;
inline constexpr double kCurveLimit = 8323072.0;

template <class Doubles>
[[gnu::always_inline]] inline Doubles bent(double bend, Doubles x) {
    return ((1.0 - x) * bend + x) * x;
}

// `t` is the pixel's transparency, 0 to 1.
template <class Floats, class Doubles>
[[gnu::always_inline]] inline Floats toned(const ToneCurve& curve, Doubles t, Floats c) {
    const Doubles x = (wide(c / 255.0f) + 0.5 * t - curve.low) / curve.width;
    const Doubles y = bent(curve.bend, x) - curve.grey * t;
    const Doubles limited = floor_at(-kCurveLimit, cap_at(kCurveLimit, y));
    return clamp_to(0.0f, 255.0f, narrow(limited * 255.0));
}

// A hue of any turn, brought into 0 to 6 with no other rounding than adding or taking away 6 a turn at a time
// would make.
template <class Doubles>
[[gnu::always_inline]] inline Doubles one_turn(Doubles hue) {
    const Doubles rest = hue - 6.0 * whole(hue / 6.0);
    return choose(0.0 > rest, rest + 6.0, rest);
}

// The level, 0 to 255, whose successor has this natural logarithm.
template <class Doubles>
[[gnu::always_inline]] inline auto level_of(Doubles logarithm) {
    return clamp_to(0.0f, 255.0f, narrow(exp_of(logarithm) - 1.0));
}

template <class Floats>
struct Toned {
    Floats r, g, b;  // role 0, role 1, primary
};

template <class Floats>
[[gnu::always_inline]] inline Toned<Floats> adjusted(const ConformParams& p, const Toned<Floats>& toned) {
    const auto r = wide(toned.r);
    const auto g = wide(toned.g);
    const auto b = wide(toned.b);
    const auto low01 = choose(r > g, g, r);
    const auto high01 = choose(r > g, r, g);
    const auto middle = choose(high01 > b, b, high01);
    const auto max = choose(high01 > b, high01, b);
    const auto min = choose(low01 > middle, middle, low01);
    const auto mid = choose(low01 > middle, low01, middle);

    const auto log_min = log_of(min + 1.0);
    const auto log_max = log_of(max + 1.0);
    const auto range = log_max - log_min;
    const auto f = (log_of(mid + 1.0) - log_min) / range;
    // On a tie the later order counts.
    auto hue = choose((r >= g) & (g >= b), f, 0.0);
    hue = choose((g >= r) & (r >= b), 2.0 - f, hue);
    hue = choose((g >= b) & (b >= r), 2.0 + f, hue);
    hue = choose((b >= g) & (g >= r), 4.0 - f, hue);
    hue = choose((b >= r) & (r >= g), 4.0 + f, hue);
    hue = choose((r >= b) & (b >= g), 6.0 - f, hue);
    hue = choose(range == 0.0, 0.0, hue);

    const auto turned = one_turn(hue + p.hue);
    const auto top = (log_max / kLog256 + p.value) * kLog256;
    const auto bottom = top - range / kLog256 * p.saturation * kLog256;

    const auto first = turned < 1.0;
    const auto second = turned < 2.0;
    const auto third = turned < 3.0;
    const auto fourth = turned < 4.0;
    const auto fifth = turned < 5.0;
    auto way = turned;
    way = choose(turned >= 1.0, 2.0 - turned, way);
    way = choose(turned >= 2.0, turned - 2.0, way);
    way = choose(turned >= 3.0, 4.0 - turned, way);
    way = choose(turned >= 4.0, turned - 4.0, way);
    way = choose(turned >= 5.0, 6.0 - turned, way);
    const auto lo = wide(level_of(bottom));
    const auto hi = wide(level_of(top));
    const auto between = wide(level_of((top - bottom) * way + bottom));

    const auto red =
        choose(first, hi, choose(second, between, choose(fourth, lo, choose(fifth, between, hi))));
    const auto green = choose(first, between, choose(third, hi, choose(fourth, between, lo)));
    const auto blue = choose(second, lo, choose(third, between, choose(fifth, hi, between)));
    return {narrow(red), narrow(green), narrow(blue)};
}

}  // namespace kernel
