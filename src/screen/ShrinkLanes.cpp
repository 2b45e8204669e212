#include <cstdint>

#include "lanes/FoldLines.h"
#include "lanes/SlidingJoin.h"

namespace LANES {

void shrink_row(const float* centre, std::size_t radius, float* __restrict scratch, float* __restrict out,
                std::size_t n) {
    using Mark = std::uint8_t;  // narrow, so that a vector holds many
    auto* zeros = reinterpret_cast<Mark*>(scratch);
    const float* first = centre - radius;
    for (std::size_t i = 0; i < n + 2 * radius; ++i) zeros[i] = first[i] == 0.0f ? Mark{1} : Mark{0};
    const auto either = [](Mark a, Mark b) { return static_cast<Mark>(a | b); };
    // All bits of the centre stay, or none.
    const auto put = [centre, out](std::size_t i, Mark zeroed) {
        const auto bits = __builtin_bit_cast(std::int32_t, centre[i]);
        out[i] = __builtin_bit_cast(float, bits&(std::int32_t{zeroed} - 1));
    };
    sliding_join(zeros, 2 * radius + 1, n, either, put);
}

void shrink_lines(std::span<const float* const> lines, float* out, std::size_t n) {
    fold_lines(lines, out, n, [](auto kept, auto v) { return v == 0.0f ? decltype(v){} : kept; });
}

}  // namespace LANES
