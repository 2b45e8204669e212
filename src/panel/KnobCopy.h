// Writes the knob values into the controls that the kernels read, as the table of the knobs says.
//
// Runs on every validation. Tabs that are switched off are not written: their controls keep what they held,
// but for the knobs that say otherwise. Nothing is marked in "Dirty".
#pragma once

#include <cstdint>

#include "controls/ControlBlock.h"
#include "panel/KnobStorage.h"

void copy_knobs(const KnobStorage& knobs, std::uint32_t input_flags, ControlBlock& controls);
