// Brings a matte into range at one end without flattening its edges: where the extremes around a pixel pass
// the limit, the range between them is squeezed into what lies on the limit's good side.
//
// Extremes are taken over `radius` pixels either way, cut at the frame, along the row and along the column;
// each gives a corrected value and the more limited of the two stands. Pixels whose pre-matte is not 0 or
// less (certain backing, and NaN) keep their matte. Planes are width x height, row-major; `result` must not
// overlap the others. A radius may be anything: the cost of a pixel does not depend on it.
// A NaN is no extreme: its neighbours do not see it, and it stays NaN.
#pragma once

#include <cstdint>

#include "framework/ParallelLoop.h"

enum class MatteLimit {
    kAbove,  // nothing above 255
    kBelow,  // nothing below 0
};

void matte_correct(MatteLimit limit, std::int32_t radius, int width, int height, const float* matte,
                   const float* pre_matte, float* result, const ParallelLoop& loop);
