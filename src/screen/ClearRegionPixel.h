// The arithmetic of the clear-region decision for one pixel or one pack of pixels; see ClearRegionKernel.h.
//
// Doubles is a value or pack; the backing and what is made of it are either, for a constant backing and a
// clean plate.
#pragma once

#include "lanes/KernelMath.h"
#include "screen/ClearRegionKernel.h"

namespace kernel {

inline constexpr auto kByteSingle = static_cast<float>(kByte);

// A secondary channel of the backing: its level with the tolerance added, and its dark threshold.
template <class Doubles>
struct Minor {
    Doubles level, dark, rest;
};

template <class Doubles>
[[gnu::always_inline]] inline Minor<Doubles> minor_of(Doubles primary, Doubles level, double darks) {
    const Doubles dark = ((primary - level) * darks) / primary;
    return {level, dark, level - dark};
}

template <class Doubles, class Level>
[[gnu::always_inline]] inline auto darker_passes(const Minor<Level>& minor, Level backing, Doubles primary,
                                                 Doubles c) {
    return c < ((backing - primary) * minor.dark) / backing + (primary * minor.level) / backing;
}

// What the backing's primary level is known to be. For a positive, finite b the quotient x / b, correctly
// rounded, reaches 1 exactly when x reaches b.
enum class BackingLevel { kPositive, kAny };

template <BackingLevel kLevel, class Doubles, class Level>
[[gnu::always_inline]] inline auto brighter_passes(const Minor<Level>& minor, Level backing, Doubles primary,
                                                   Doubles c, double brights) {
    const Doubles content =
        ((c - minor.dark) * backing - primary * minor.rest) / ((1.0 - minor.dark) * backing - minor.rest);
    const Doubles left = primary - content * brights;
    if constexpr (kLevel == BackingLevel::kPositive) {
        return left >= backing;
    } else {
        return left / backing >= 1.0;
    }
}

// Where the primary is exactly the backing's, both tests are made and either may decide.
template <BackingLevel kLevel, class Floats, class Level>
[[gnu::always_inline]] inline Floats clear_of(const ClearRegionParams& k, Level backing,
                                              const Minor<Level>& minor0, const Minor<Level>& minor1,
                                              Floats c0, Floats c1, Floats cp) {
    const auto p = wide(cp * kByteSingle);
    const auto d1 = wide(c1 * kByteSingle);
    const auto d0 = wide(c0 * kByteSingle);
    const auto darker =
        (p <= backing) & darker_passes(minor1, backing, p, d1) & darker_passes(minor0, backing, p, d0);
    const auto brighter = (p >= backing) & brighter_passes<kLevel>(minor1, backing, p, d1, k.brights1) &
                          brighter_passes<kLevel>(minor0, backing, p, d0, k.brights0);
    return narrow(choose(darker | brighter, 255.0, decltype(p)(0.0)));
}

}  // namespace kernel
