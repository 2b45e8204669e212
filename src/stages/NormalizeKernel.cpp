#include "stages/NormalizeKernel.h"

LANE_KERNEL(Normalize, normalize);
