#include "stages/SpillKernel.h"

#include "lanes/KernelMath.h"

using namespace kernel;

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
