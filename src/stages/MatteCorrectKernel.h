// Brings a matte into range at one end without flattening its edges: where the extremes around a pixel pass
// the limit, the range between them is squeezed into what lies on the limit's good side.
//
// Extremes are taken over `radius` pixels either way, cut at the frame, along the row and along the column;
// each gives a corrected value and the more limited of the two stands. Pixels whose pre-matte is not 0 or
// less (certain backing, and NaN) keep their matte. Planes are width x height, row-major; `result` must not
// overlap the matte, but may be the pre-matte's plane. A radius may be anything: the cost of a pixel does not
// depend on it.
// A NaN is no extreme: its neighbours do not see it, and it stays NaN.
#pragma once

#include <cstdint>

#include "framework/ParallelLoop.h"
#include "lanes/LaneKernel.h"

enum class MatteLimit {
    kAbove,  // nothing above 255
    kBelow,  // nothing below 0
};

void matte_correct(MatteLimit limit, std::int32_t radius, int width, int height, const float* matte,
                   const float* pre_matte, float* result, const ParallelLoop& loop);

// The two passes over a tile: pixels begin to end - 1 of `lines` rows or columns, at most kMatteLines, which
// lie side by side. Pointers are to the first pixels of the first line. The pass over rows comes first and
// leaves its corrected values in `result`, and marks there for the other what keeps its matte.
inline constexpr int kMatteLines = 32;  // whole packs of any form

struct MatteTile {
    MatteLimit limit;
    int lines;
    std::ptrdiff_t radius;  // not beyond the lines' ends
    std::ptrdiff_t length;  // of the lines
    std::ptrdiff_t begin;
    std::ptrdiff_t end;
    std::ptrdiff_t width;  // of the frame
    const float* matte;
    const float* pre_matte;  // rows only
    float* result;
    float* scratch;  // floats_needed
};

std::ptrdiff_t floats_needed(const MatteTile& tile);

using CorrectMatte = void(const MatteTile& tile);
LANE_KERNEL(CorrectMatte, correct_matte_rows);
LANE_KERNEL(CorrectMatte, correct_matte_columns);
