#include "screen/ShrinkKernel.h"

LANE_KERNEL(ShrinkRow, shrink_row);
LANE_KERNEL(ShrinkLines, shrink_lines);
