// Takes the noise out of a solved matte, tile by tile.
#pragma once

#include "framework/ParallelLoop.h"
#include "unmix/BackingModel.h"
#include "unmix/CleanKernel.h"
#include "unmix/Segmentation.h"
#include "unmix/Solution.h"

namespace unmix {

void clean_frame(const FrameScale& scale, const Segmentation& segmentation, const Solution& solution,
                 const CleanParams& params, Floats& alpha, const ParallelLoop& loop);

}  // namespace unmix
