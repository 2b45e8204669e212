#include "stages/MatteKernel.h"

LANE_KERNEL(MatteConstant, matte_constant);
LANE_KERNEL(MatteCleanPlate, matte_clean_plate);

MatteParams matte_params(const ControlBlock& controls) {
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {static_cast<float>(backing[0]),        static_cast<float>(backing[1]),
            static_cast<float>(backing[2]),        percent(controls::kMatteDensityBrights),
            percent(controls::kMatteDensityDarks), percent(controls::kMatteDensityCool),
            percent(controls::kMatteDensityWarm)};
}
