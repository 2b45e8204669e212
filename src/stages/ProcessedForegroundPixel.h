// The arithmetic of the processed foreground for one pixel or one pack of pixels; see
// ProcessedForegroundKernel.h.
#pragma once

#include "lanes/KernelMath.h"
#include "stages/ProcessedForegroundKernel.h"

namespace kernel {

// One channel: `c` as it came, without `veil`, the backing's share in it, where there is some.
template <class Floats, class Doubles>
[[gnu::always_inline]] inline Floats unveiled(Floats matte, Floats c, Doubles veil) {
    return choose(matte > 0.0f, clamp_to(0.0f, 255.0f, narrow(wide(c) - veil)), c);
}

template <class Floats>
[[gnu::always_inline]] inline Floats opacity_of(Floats matte) {
    return choose(matte > 0.0f, narrow(255.0 - cap_at(255.0, wide(matte))), 255.0f);
}

}  // namespace kernel
