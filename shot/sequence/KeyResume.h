// Which frames of a key are done.
#pragma once

#include <string>
#include <vector>

#include "shot/Caller.h"
#include "shot/farm/OutputState.h"
#include "shot/sequence/KeyPipeline.h"

namespace veloxa {

// Of the plan's outputs, the one that is least done; `fingerprints` are those of the frame. Throws
// Interrupted.
OutputState frame_state(const KeyPlan& plan, int frame, const std::vector<std::string>& fingerprints,
                        const Zo::Image::AbortFlag* abort);

// How many of the plan's first frames are done. Throws Interrupted.
int kept_at_head(const KeyPlan& plan, const Caller& caller);

// "9 frames: 4 made, 3 kept, 2 stale and made again, 0 failed".
std::string counts_text(const FrameCounts& counts);

}  // namespace veloxa
