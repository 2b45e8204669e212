// Turns spill suppression down until it leaves the subject's own colours alone.
//
// The screen's channel counts as spill where it exceeds something between the two others; "warm" and "cool"
// say where between, for colours with more of the one or of the other. At their defaults skin loses a
// seventh of its green. Deep inside the subject there is hardly any spill, so what changes there is its own.
#pragma once

#include <span>

#include "tools/Stage.h"

struct SpillSetup {
    KnobStorage knobs;
    double changed_before = 0.0;  // share of the deep colours that the suppression changes, with the knobs
    double changed = 0.0;         // as they were, and as they are returned
    double excess = 0.0;          // share that is left of what the rims' primary exceeds the others' mean by
};

// Samples are opaque pixels of the output matte, on the working scale, deep inside the subject and near its
// outline. Turns "spill_warm" and "spill_cool" down, not below 0 and only where they are not held, until most
// of the deep colours that they can spare stay within a few per cent.
SpillSetup spare_own_colours(const Setting& setting, std::span<const VeloxaSample::Sample> deep,
                             std::span<const VeloxaSample::Sample> rims);
