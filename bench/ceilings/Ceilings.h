// What this machine can do at the most, measured on one core with the widest vectors that it has.
#pragma once

#include "support/Counts.h"

namespace bench {

struct Ceilings {
    // A second.
    double float_divisions, double_divisions;
    double float_multiply_adds, double_multiply_adds;
    double conversions;
    double cached_bytes;  // read and written, in the second-level cache
    double copied_bytes;  // read and written in memory, by all threads together
};

// Measured when they are first asked for; takes half a second.
const Ceilings& ceilings();

// The least time of a pixel: divisions at their rate and all other operations at that of multiply-adds, or
// the bytes at the cache's rate where that is more.
double floor_nanoseconds(const Counts& pixel);

}  // namespace bench
