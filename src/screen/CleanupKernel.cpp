#include "screen/CleanupKernel.h"

#include "controls/Controls.h"

CleanupParams cleanup_params(const ControlBlock& controls) {
    return {static_cast<float>(controls.get(controls::kCleanUpRecover)),
            controls.get(controls::kCleanUp) / 100.0};
}

LANE_KERNEL(CleanupColour, cleanup_colour);
LANE_KERNEL(CleanupMatte, cleanup_matte);
