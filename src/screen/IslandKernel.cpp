#include "screen/IslandKernel.h"

LANE_KERNEL(RemoveIslands, remove_islands);
