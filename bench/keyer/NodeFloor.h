// The least time of a whole frame: the kernels of a configuration, each at its own floor, and the memory that
// a frame must pass through.
#pragma once

#include <string>

#include "keyer/NodeRig.h"

namespace bench {

// Nanoseconds a pixel on so many threads. `backing` is the share of pixels that are certain backing, which
// the processed foreground and spill suppression pass over.
double node_floor(const std::string& configuration, double backing, int threads);

}  // namespace bench
