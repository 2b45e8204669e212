// Alpha of the pixels that had to be solved, each by the likeliest colour of the subject there.
#pragma once

#include "unmix/Plane.h"

namespace unmix {

struct Solution {
    Floats alpha;      // 0 and 1 where it was known before
    Floats variance;   // of alpha by the plate's noise; 0 where alpha was known
    Floats deviation;  // of alpha by noise and the colours' spread
    Bytes
        candidate;  // 0 known before, 1 neutral, 2 nearest solid, 3 and more the clusters of the solids' rims
};

}  // namespace unmix
