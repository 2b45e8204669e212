// The span of plate data as a small frame, and a loop over its pieces, for kernels over whole frames.
#pragma once

#include <algorithm>

#include "framework/ParallelLoop.h"
#include "support/Kernel.h"

namespace bench {

inline constexpr int kFrameWidth = 128;
inline constexpr int kFrameHeight = static_cast<int>(kSpan) / kFrameWidth;

inline void run_loop(int begin, int end, int grain, const std::function<void(int, int)>& body) {
    for (int at = begin; at < end; at += grain) body(at, std::min(at + grain, end));
}

}  // namespace bench
