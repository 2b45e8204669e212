// The subject's colour over the frame.
#pragma once

#include "framework/ParallelLoop.h"
#include "unmix/BackingModel.h"
#include "unmix/SpillKernel.h"
#include "unmix/UnmixParams.h"

namespace unmix {

// `colour` is as the plate stores it, times alpha.
void colour_frame(const BackingModel& backing, const Floats& alpha, const UnspillParams& params,
                  Encoding encoding, Colours& colour, const ParallelLoop& loop);

}  // namespace unmix
