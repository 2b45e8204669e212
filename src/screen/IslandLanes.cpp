#include <cstddef>
#include <cstdint>

namespace LANES {

namespace {

constexpr std::size_t kChunk = 512;

[[gnu::always_inline]] inline std::int32_t is_zero(float v) {
    return v == 0.0f ? 1 : 0;
}

}  // namespace

void remove_islands(std::int32_t threshold, const float* below, const float* here, const float* above,
                    float* __restrict out, std::size_t n) {
    std::int32_t zeros[kChunk + 2];  // of a column's three pixels
    for (std::size_t begin = 0; begin < n; begin += kChunk) {
        const std::size_t count = n - begin < kChunk ? n - begin : kChunk;
        const float* b = below + begin;
        const float* h = here + begin;
        const float* a = above + begin;
        for (std::size_t i = 0; i < count + 2; ++i) zeros[i] = is_zero(b[i]) + is_zero(h[i]) + is_zero(a[i]);
        for (std::size_t i = 0; i < count; ++i) {
            const float v = h[i + 1];
            const std::int32_t all = zeros[i] + zeros[i + 1] + zeros[i + 2];
            const std::int32_t disagreeing = v == 0.0f ? 9 - all : all;
            const float flipped = v == 0.0f ? 255.0f : 0.0f;
            out[begin + i] = disagreeing >= threshold ? flipped : v;
        }
    }
}

}  // namespace LANES
