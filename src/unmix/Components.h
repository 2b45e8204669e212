// Connected parts of a mask, by the four neighbours.
#pragma once

#include <cstdint>

#include "unmix/Plane.h"

namespace unmix {

// Numbers the parts from 1 on; 0 where the mask is not set. Returns how many there are.
int label_components(const Bytes& mask, Plane<std::int32_t>& labels);

}  // namespace unmix
