#include <cstddef>

namespace LANES {

void unmix_matte(const float* alpha, float* matte, std::size_t n) {
    float* to = matte;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) to[i] = 255.0f * (1.0f - alpha[i]);
}

}  // namespace LANES
