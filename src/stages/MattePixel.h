// The arithmetic of the colour-difference matte for one pixel or one pack of pixels; see MatteKernel.h.
//
// Floats is a single-precision value or pack. The backing is either: single values for a constant backing,
// packs for a clean plate.
#pragma once

#include <limits>
#include <type_traits>

#include "lanes/KernelMath.h"
#include "stages/MatteKernel.h"

namespace kernel {

// The floor that "darks" lifts.
template <class Floats>
[[gnu::always_inline]] inline auto dark_floor(Floats p, Floats s, double darks) {
    const auto product = wide(p - s) * darks / wide(p) * 255.0;
    return min_of(wide(s), product);
}

// With a primary below 255 the quotient is not positive, so the floor normally stands.
template <class Floats, class Doubles>
[[gnu::always_inline]] inline Doubles lifted_floor(Floats p, Floats s, Doubles floor) {
    const Doubles lifted = max_of(wide(p - s) * 255.0 / wide(p - 255.0f), floor);
    return choose(255.0 > wide(p), lifted, floor);
}

// The backing as one pixel sees it, and the levels of the secondary channels below which the backing's share
// is not taken away.
template <class Floats, class Doubles>
struct Backing {
    Floats p, s0, s1;
    Doubles floor0, floor1;
};

template <class Floats>
[[gnu::always_inline]] inline auto backing_of(Floats p, Floats s0, Floats s1, double darks) {
    const auto floor0 = lifted_floor(p, s0, dark_floor(p, s0, darks));
    const auto floor1 = lifted_floor(p, s1, dark_floor(p, s1, darks));
    return Backing<Floats, decltype(wide(p))>{p, s0, s1, floor0, floor1};
}

// What a secondary channel holds of the subject once the backing's share is taken away.
template <class Floats, class Level, class Floor>
[[gnu::always_inline]] inline auto content(Floats c, Floats cp, Level p, Level s, Floor floor) {
    const auto pd = wide(p);
    const auto rest = wide(s) - floor;
    const auto m = (pd * (wide(c) - floor) - wide(cp) * rest) / ((255.0 - floor) * pd / 255.0 - rest);
    return floor_at(0.0, m);
}

// The smaller of x1 / p and x0 / p, the second on ties and NaN. Division by a positive, finite level keeps
// the order, so one quotient will do.
template <class Doubles, class Level>
[[gnu::always_inline]] inline Doubles smaller_quotient(Doubles x1, Doubles x0, Level p) {
    if constexpr (std::is_same_v<Level, float>) {
        if (p > 0.0f && p < std::numeric_limits<float>::infinity()) return min_of(x1, x0) / wide(p);
    }
    return min_of(x1 / wide(p), x0 / wide(p));
}

template <class Floats, class Level, class Floor>
[[gnu::always_inline]] inline Floats matte_of(const MatteParams& k, const Backing<Level, Floor>& b, Floats c0,
                                              Floats c1, Floats cp) {
    const auto m1 = content(c1, cp, b.p, b.s1, b.floor1);
    const auto m0 = content(c0, cp, b.p, b.s0, b.floor0);
    const auto least = min_of(whole(m1), whole(m0));
    const auto cpd = wide(cp);
    const auto x1 = cpd - k.brights * m1 - k.cool * (m1 - least);
    const auto x0 = cpd - k.brights * m0 - k.warm * (m0 - least);
    return narrow(clamp_to(-127.5, 127.5, smaller_quotient(x1, x0, b.p)) * 255.0);
}

}  // namespace kernel
