// For each pixel the nearest one where a mask is set.
#pragma once

#include <cstdint>

#include "framework/ParallelLoop.h"
#include "unmix/Plane.h"

namespace unmix {

// `index` is the place of the nearest set pixel in row-major order, -1 where none is set at all; of several as near
// the one furthest left, then lowest. `away`, where given, its distance; 1e4 where there is none.
// By columns, then the lower envelope of parabolas along rows (Felzenszwalb and Huttenlocher 2012): linear.
void nearest(const Bytes& mask, Plane<std::int32_t>& index, Floats* away, const ParallelLoop& loop);

}  // namespace unmix
