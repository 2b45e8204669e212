#include "plates/Variation.h"

#include "plates/Math.h"

namespace plate {

Variation varied(std::uint64_t seed) {
    Draw draw(key_of(seed, 4));
    constexpr VeilTone kTones[] = {VeilTone::kWarm, VeilTone::kNeutral, VeilTone::kDark};
    Variation v;
    v.veil_tone = kTones[draw.below(3)];
    v.veil_density = draw.between(0.15f, 0.80f);
    v.spill = draw.between(0.0f, 0.5f);
    v.grain = 0.3f * std::pow(10.0f, draw());
    v.defocus = draw.between(0.0f, 2.5f);
    v.marks = draw() < 0.25f ? 0 : 4 + draw.below(9);
    v.hair = draw() < 0.25f ? 1.0f : draw.between(2.0f, 5.0f);
    v.speed = draw.between(2.0f, 4.0f);
    v.details = draw() < 0.5f;
    return v;
}

}  // namespace plate
