// Solves the unknown pixels of a frame, tile by tile.
#pragma once

#include "framework/ParallelLoop.h"
#include "unmix/Candidates.h"
#include "unmix/Solution.h"

namespace unmix {

void solve_frame(const BackingModel& backing, const Segmentation& segmentation, const Candidates& candidates,
                 Solution& solution, const ParallelLoop& loop);

}  // namespace unmix
