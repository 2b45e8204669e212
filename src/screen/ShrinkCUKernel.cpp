#include "screen/ShrinkCUKernel.h"

LANE_KERNEL(ShrinkCURow, shrink_cu_row);
LANE_KERNEL(ShrinkCULines, shrink_cu_lines);
LANE_KERNEL(ShrinkCUEnd, shrink_cu_end);
