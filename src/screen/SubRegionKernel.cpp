#include "screen/SubRegionKernel.h"

SubRegionParams sub_region_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {controls.get(controls::kBackingColor), percent(controls::kFilmBrights),
            percent(controls::kFilmDarks), percent(controls::kInnerCoolDensity),
            percent(controls::kInnerWarmDensity)};
}

LANE_KERNEL(SubRegion, sub_region);
