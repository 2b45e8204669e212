#include "screen/ClearFrameKernel.h"

bool clear_frame_is_black(const RolePixels& clear) {
    return clear.primary[0] + (clear.role1[0] + clear.role0[0]) == 0.0f;
}

LANE_KERNEL(ClearFrameLastCoverage, clear_frame_last_coverage);
LANE_KERNEL(ClearFrame, clear_frame);
