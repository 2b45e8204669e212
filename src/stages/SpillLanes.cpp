#include "lanes/ForPacks.h"
#include "lanes/KernelMath.h"
#include "stages/SpillKernel.h"

namespace LANES {

using namespace kernel;

namespace {

// The smaller distance of a level to the ends of the scale: large in the mid-tones.
[[gnu::always_inline]] inline auto mid_tone(Floats level) {
    return min_of(whole(wide(level)), whole(wide(255.0f - level)));
}

// The spill that a secondary channel `c` speaks for; `total` is the primary's weighed level, `z` the
// transparency times "darks".
[[gnu::always_inline]] inline Doubles spill_share(const SpillParams& p, Floats c, std::int32_t backing,
                                                  double lack, Doubles total, Doubles z) {
    const auto lift = truncated(z * lack);
    const Doubles floor = wide(minus(backing, lift));
    const Doubles n = (wide(c - narrow(lift)) * p.weight - floor * total) /
                      (wide(255.0f - narrow(lift)) * p.weight_per_level - floor);
    const Doubles subject = max_of(whole(n), 0.0);
    return (total - subject) * p.inverse_weight;
}

// A channel without its spill; `level` is the spilled backing, `amends` what replaces it.
[[gnu::always_inline]] inline Floats relit(Doubles amends, Doubles level, Doubles most, Floats c) {
    const Doubles all = level + most;
    const Doubles v = (amends + most) * wide(c) / all;
    return narrow(choose(all == 0.0, 0.0, v));
}

// Colour in role order.
struct Colour {
    Floats role0, role1, primary;
};

[[gnu::always_inline]] inline Colour without_spill(const SpillParams& p, const Colour& c, Floats alpha) {
    const auto total = mid_tone(c.primary) * p.mid_tones + wide(c.primary) * p.brights;
    const auto z = wide(255.0f - alpha) * p.darks_per_level;
    const auto share1 = spill_share(p, c.role1, p.backing1, p.lack1, total, z);
    const auto share0 = spill_share(p, c.role0, p.backing0, p.lack0, total, z);

    const auto least = min_of(share1, share0);
    const auto weighed =
        least + p.cool * max_of(share0 - share1, 0.0) + p.warm * max_of(share1 - share0, 0.0);
    const auto plain = max_of(whole(least * 255.0), 0.0);
    const auto full = clamp_to(0.0, 255.0, whole(255.0 * clamp_to(-127.5, 127.5, weighed)));
    const auto blend = whole(p.rest * plain + p.strength * full);

    // What the spill leaves of the brightest channel.
    const auto spilled0 = p.level0 * plain;
    const auto spilled1 = p.level1 * plain;
    const auto left0 = (wide(c.role0 * 255.0f) - spilled0) * kByte;
    const auto left1 = (wide(c.role1 * 255.0f) - spilled1) * kByte;
    const auto leftP = (wide(c.primary * 255.0f) - p.levelP * plain) * kByte;
    const auto most = max_of(leftP, max_of(left1, max_of(left0, 0.0))) * 255.0;

    const Floats out0 = relit(p.ambiance0 * blend, spilled0, most, c.role0);
    const Floats out1 = relit(p.ambiance1 * blend, spilled1, most, c.role1);
    // The primary's own spill is the weighed estimate, not the plain one.
    const Floats outP = relit(p.ambianceP * blend, p.levelP * full, most, c.primary);

    const auto whole0 = truncated(wide(out0));
    const auto whole1 = truncated(wide(out1));
    const auto level = choose(wide(out0) > wide(whole1), wide(whole0), wide(whole1));
    const auto lack = min_of(full - plain, 0.0);
    const auto limit = wide(minus(truncated(level), truncated(lack))) + p.allowance;
    const Floats limited = narrow(choose(wide(outP) > limit, limit, wide(outP)));
    return {clamp_to(0.0f, 255.0f, out0), clamp_to(0.0f, 255.0f, out1), clamp_to(0.0f, 255.0f, limited)};
}

}  // namespace

void suppress_spill(const SpillParams& params, const RolePixels& in, const float* alpha,
                    const float* pre_matte, const RoleOutput& out, std::size_t n) {
    const SpillParams p = params;
    for_packs({in.role0, in.role1, in.primary, alpha, pre_matte}, {out.role0, out.role1, out.primary}, n,
              [p](const Inputs& from, const Outputs& to) {
                  const Colour spilled{from[0], from[1], from[2]};
                  const auto keep = from[4] != 0.0f;
                  Colour result = spilled;
                  // Certain backing comes in large areas.
                  if (!all_of(keep)) result = without_spill(p, spilled, from[3]);
                  to.put(0, choose(keep, spilled.role0, one_nan(result.role0)));
                  to.put(1, choose(keep, spilled.role1, one_nan(result.role1)));
                  to.put(2, choose(keep, spilled.primary, one_nan(result.primary)));
              });
}

}  // namespace LANES
