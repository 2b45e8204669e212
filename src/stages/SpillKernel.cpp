#include "stages/SpillKernel.h"

#include "stages/KernelMath.h"

using namespace kernel;

namespace {

double wide(float v) {
    return static_cast<double>(v);
}

double rounded(double v) {
    return wide(static_cast<float>(v));
}

float narrow(std::int32_t v) {
    return static_cast<float>(v);
}

// Differences of integers wrap; products are formed in double, where they do not overflow.
std::int32_t minus(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

// The integer part, a double again: selections by comparisons of one width vectorise.
double whole(double v) {
    return to_int(v);
}

// The smaller distance of a level to the ends of the scale: large in the mid-tones.
double mid_tone(float level) {
    return min_of(whole(wide(level)), whole(wide(255.0f - level)));
}

// The spill that a secondary channel `c` speaks for; `total` is the primary's weighed level, `z` the
// transparency times "darks".
double spill_share(const SpillParams& p, float c, std::int32_t backing, double lack, double total, double z) {
    const std::int32_t lift = to_int(z * lack);
    const double floor = minus(backing, lift);
    const double n = (wide(c - narrow(lift)) * p.weight - floor * total) /
                     (wide(255.0f - narrow(lift)) * p.weight_per_level - floor);
    const double subject = max_of(whole(n), 0.0);
    return (total - subject) * p.inverse_weight;
}

// A channel without its spill; `level` is the spilled backing, `amends` what replaces it.
double relit(double amends, double level, double most, float c) {
    const double all = level + most;
    const double v = (amends + most) * wide(c) / all;
    return rounded(all == 0.0 ? 0.0 : v);
}

// Single-precision values, held as doubles.
struct Colour {
    double role0, role1, primary;
};

Colour suppressed(const SpillParams& p, float c0, float c1, float cP, float alpha) {
    const double total = mid_tone(cP) * p.mid_tones + wide(cP) * p.brights;
    const double z = wide(255.0f - alpha) * p.darks_per_level;
    const double share1 = spill_share(p, c1, p.backing1, p.lack1, total, z);
    const double share0 = spill_share(p, c0, p.backing0, p.lack0, total, z);

    const double least = min_of(share1, share0);
    const double weighed =
        least + p.cool * max_of(share0 - share1, 0.0) + p.warm * max_of(share1 - share0, 0.0);
    const double plain = max_of(whole(least * 255.0), 0.0);
    const double full = clamp_to(0.0, 255.0, whole(255.0 * clamp_to(-127.5, 127.5, weighed)));
    const double blend = whole(p.rest * plain + p.strength * full);

    // What the spill leaves of the brightest channel.
    const double spilled0 = p.level0 * plain;
    const double spilled1 = p.level1 * plain;
    const double left0 = (wide(c0 * 255.0f) - spilled0) * kByte;
    const double left1 = (wide(c1 * 255.0f) - spilled1) * kByte;
    const double leftP = (wide(cP * 255.0f) - p.levelP * plain) * kByte;
    const double most = max_of(leftP, max_of(left1, max_of(left0, 0.0))) * 255.0;

    const double out0 = relit(p.ambiance0 * blend, spilled0, most, c0);
    const double out1 = relit(p.ambiance1 * blend, spilled1, most, c1);
    // The primary's own spill is the weighed estimate, not the plain one.
    const double outP = relit(p.ambianceP * blend, p.levelP * full, most, cP);

    const double whole1 = whole(out1);
    const double level = out0 > whole1 ? whole(out0) : whole1;
    const double lack = min_of(full - plain, 0.0);
    const double limit = minus(to_int(level), to_int(lack)) + p.allowance;
    const double limited = outP > limit ? rounded(limit) : outP;
    return {clamp_to(0.0, 255.0, out0), clamp_to(0.0, 255.0, out1), clamp_to(0.0, 255.0, limited)};
}

}  // namespace

SpillParams spill_params(const ControlBlock& controls) {
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const ControlTriple ambiance = controls.get(controls::kAmbiance);
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };

    SpillParams p{};
    p.backing0 = backing[0];
    p.backing1 = backing[1];
    p.level0 = backing[0];
    p.level1 = backing[1];
    p.levelP = backing[2];
    p.ambiance0 = ambiance[0];
    p.ambiance1 = ambiance[1];
    p.ambianceP = ambiance[2];
    p.cool = percent(controls::kSpillCool);
    p.warm = percent(controls::kSpillWarm);
    p.brights = percent(controls::kSpillBrights);
    p.mid_tones = percent(controls::kSpillMidTones);
    p.strength = percent(controls::kStrength);
    p.rest = 1.0 - p.strength;
    const std::int32_t middle = min_of(backing[2], to_int(255.0f - narrow(backing[2])));
    p.weight = p.levelP * p.brights + middle * p.mid_tones;
    p.weight_per_level = p.weight * kByte;
    p.inverse_weight = 1.0 / p.weight;
    p.lack0 = minus(backing[2], backing[0]) / p.levelP * 255.0;
    p.lack1 = minus(backing[2], backing[1]) / p.levelP * 255.0;
    p.darks_per_level = percent(controls::kSpillDarks) * kByte;
    const std::int32_t above = minus(ambiance[2], max_of(ambiance[0], ambiance[1]));
    p.allowance = floor_at(0.0, above * kByte) * 255.0;
    return p;
}

void suppress_spill(const SpillParams& params, const RolePixels& in, const float* alpha,
                    const float* pre_matte, const RoleOutput& out, std::size_t n) {
    const SpillParams p = params;
    const float* in0 = in.role0;
    const float* in1 = in.role1;
    const float* inP = in.primary;
    const float* inA = alpha;
    const float* pre = pre_matte;
    float* out0 = out.role0;
    float* out1 = out.role1;
    float* outP = out.primary;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const Colour c = suppressed(p, in0[i], in1[i], inP[i], inA[i]);
        const bool keep = wide(pre[i]) != 0.0;
        out0[i] = static_cast<float>(keep ? wide(in0[i]) : c.role0);
        out1[i] = static_cast<float>(keep ? wide(in1[i]) : c.role1);
        outP[i] = static_cast<float>(keep ? wide(inP[i]) : c.primary);
    }
}
