#include "framework/BlurKernel.h"

float blur_scale(int radius) {
    return 1.0f / static_cast<float>(2 * radius + 1);
}

LANE_KERNEL(BlurAdd, blur_add);
LANE_KERNEL(BlurFinish, blur_finish);
