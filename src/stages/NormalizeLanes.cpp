#include <cstddef>
#include <limits>

namespace LANES {

void normalize(const float* in, float* out, std::size_t n) {
    float* to = out;
#pragma GCC ivdep
    for (std::size_t i = 0; i < n; ++i) {
        const float v = in[i];
        const float above = v - 0.5f;
        const float bent = above * 0.5f / (above + 1.0f);
        const float knee = v == std::numeric_limits<float>::infinity() ? 0.5f : bent;
        to[i] = (0.5f > v ? v : knee + 0.5f) * 255.0f;
    }
}

}  // namespace LANES
