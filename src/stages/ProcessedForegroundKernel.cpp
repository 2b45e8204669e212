#include "stages/ProcessedForegroundKernel.h"

#include "controls/Controls.h"

LANE_KERNEL(UnveilConstant, unveil_constant);
LANE_KERNEL(UnveilCleanPlate, unveil_clean_plate);

VeilParams veil_params(const ControlBlock& controls) {
    const ControlTriple veiling = controls.get(controls::kBgVeiling);
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto level = [&](std::size_t role) {
        return static_cast<double>(static_cast<float>(backing[role]));
    };
    return {veiling[0] / 100.0,
            veiling[1] / 100.0,
            veiling[2] / 100.0,
            level(0),
            level(1),
            level(2),
            controls.get(controls::kScreenCorrect) != 0};
}
