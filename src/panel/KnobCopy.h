// Writes the knob values into the controls that the kernels read.
//
// Runs on every validation. Sections that are switched off are not written: their controls keep what they
// held. Single precision, then truncation; nothing is marked in "Dirty".
#pragma once

#include <cstdint>

#include "controls/ControlBlock.h"
#include "panel/KnobStorage.h"

// Stores the backing colour (already encoded, red, green, blue) in role order and the primary that it shows:
// green or red where that component is the greatest alone, else blue.
void set_backing_color(float red, float green, float blue, ControlBlock& controls);

void copy_knobs(const KnobStorage& knobs, std::uint32_t input_flags, ControlBlock& controls);
