// The loop of a kernel over the packs of a span.
#pragma once

#include <cstddef>

#include "lanes/Pack.h"

namespace LANES {

// One pack of each input line, and of each output line.
struct Inputs {
    const float* const* lines;
    std::size_t at;

    [[gnu::always_inline]] Floats operator[](int line) const { return load(lines[line] + at); }
};
struct Outputs {
    float* const* lines;
    std::size_t at;

    [[gnu::always_inline]] void put(int line, Floats v) const { store(lines[line] + at, v); }
};

// Calls pixels(Inputs, Outputs) for every pack of n pixels. Pixels must not depend on each other, and outputs
// overlap no input: the last pack of a span may cover pixels that were made already, and pixels beyond a
// short span are computed from 0 and dropped.
template <std::size_t kIn, std::size_t kOut, class Pixels>
[[gnu::always_inline]] inline void for_packs(const float* const (&in)[kIn], float* const (&out)[kOut],
                                             std::size_t n, const Pixels& pixels) {
    if (n == 0) return;
    const float* from[kIn];
    float* to[kOut];
    for (std::size_t k = 0; k < kIn; ++k) from[k] = in[k];
    for (std::size_t k = 0; k < kOut; ++k) to[k] = out[k];
    float spare[kIn + kOut][kPack];
    if (n < kPack) {
        for (std::size_t k = 0; k < kIn; ++k) {
            for (std::size_t i = 0; i < kPack; ++i) spare[k][i] = i < n ? in[k][i] : 0.0f;
            from[k] = spare[k];
        }
        for (std::size_t k = 0; k < kOut; ++k) to[k] = spare[kIn + k];
    }
    const std::size_t last = n < kPack ? 0 : n - kPack;
    for (std::size_t i = 0;;) {
        pixels(Inputs{from, i}, Outputs{to, i});
        if (i == last) break;
        i = i + kPack < last ? i + kPack : last;
    }
    if (n < kPack) {
        for (std::size_t k = 0; k < kOut; ++k) {
            for (std::size_t i = 0; i < n; ++i) out[k][i] = to[k][i];
        }
    }
}

}  // namespace LANES
