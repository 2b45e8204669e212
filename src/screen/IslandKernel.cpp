#include "screen/IslandKernel.h"

namespace {

// How many of three neighbouring pixels are 0.
std::int32_t zeros(const float* p) {
    return static_cast<std::int32_t>(p[0] == 0.0f) + static_cast<std::int32_t>(p[1] == 0.0f) +
           static_cast<std::int32_t>(p[2] == 0.0f);
}

}  // namespace

void remove_islands(std::int32_t threshold, const float* below, const float* here, const float* above,
                    float* __restrict out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const float a = here[i + 1];
        const bool is_zero = a == 0.0f;
        const std::int32_t all = zeros(below + i) + zeros(here + i) + zeros(above + i);
        const std::int32_t zero_neighbours = is_zero ? all - 1 : all;
        const std::int32_t disagreeing = is_zero ? 8 - zero_neighbours : zero_neighbours;
        const float flipped = is_zero ? 255.0f : 0.0f;
        out[i] = disagreeing >= threshold ? flipped : a;
    }
}
