#include <cstddef>

#include "lanes/KernelMath.h"

namespace LANES {

void output_matte(const float* matte, float* out, std::size_t n) {
    float* to = out;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) to[i] = 255.0f - kernel::clamp_to(0.0f, 255.0f, matte[i]);
}

}  // namespace LANES
