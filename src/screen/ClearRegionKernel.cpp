#include "screen/ClearRegionKernel.h"

#include "controls/Controls.h"

LANE_KERNEL(ClearRegion, clear_region);

// "G>R" is the pair for role 1 and "R>G" the one for role 0, whatever colours those are.
ClearRegionParams clear_region_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const ControlTriple tolerance = controls.get(controls::kScreenTolerance);
    return {backing[0],
            backing[1],
            backing[2],
            tolerance[0],
            tolerance[1],
            percent(controls::kRotoBrightsGR),
            percent(controls::kRotoDarksGR),
            percent(controls::kRotoBrightsRG),
            percent(controls::kRotoDarksRG)};
}
