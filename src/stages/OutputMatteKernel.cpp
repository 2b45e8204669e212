#include "stages/OutputMatteKernel.h"

LANE_KERNEL(OutputMatte, output_matte);
