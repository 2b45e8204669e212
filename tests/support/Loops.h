// Ways to run a kernel's loops without a lock, and over all pixels.
#pragma once

#include <algorithm>

#include "framework/ParallelLoop.h"

namespace test {

inline void forward_loop(int begin, int end, int grain, const std::function<void(int, int)>& body) {
    for (int at = begin; at < end; at += grain) body(at, std::min(at + grain, end));
}

// From the end, in shorter pieces than the kernel asks for.
inline void backward_loop(int begin, int end, int grain, const std::function<void(int, int)>& body) {
    const int length = (2 * grain + 2) / 3;
    for (int at = end; at > begin; at -= length) body(std::max(at - length, begin), at);
}

template <class Visit>
void each(int width, int height, const Visit& visit) {
    for (int n = 0; n < width * height; ++n) visit(n % width, n / width);
}

}  // namespace test
