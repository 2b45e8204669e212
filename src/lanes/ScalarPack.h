// The pack of the scalar form: one pixel. See lanes/Pack.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lanes/KernelMath.h"

namespace LANES {

inline constexpr std::size_t kPack = 1;

using Floats = float;
using Doubles = double;
using Ints = std::int32_t;

[[gnu::always_inline]] inline Floats load(const float* from) {
    return *from;
}
[[gnu::always_inline]] inline void store(float* to, Floats v) {
    *to = v;
}

}  // namespace LANES
