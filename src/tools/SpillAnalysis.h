// Turns the Spill tab so that sampled colours get their primary channel back, or lose what of it exceeds the
// two other channels and the ambience.
//
// Restored: the primary leaves spill suppression within kRestoreBound of how it came. Removed: it leaves
// within kRemoveBound of what the larger of the two others, with the ambience's allowance, permits. Both
// bounds are in levels of 255; the kernel itself counts in whole levels.
// Samples are those of the output matte with the backing taken out in full ("BG Veiling" 100): colour and
// matte (255 = backing) on the working scale. Where the pixel is partly transparent and the backing is
// constant, the veiling of the primary is a knob like the others.
#pragma once

#include "tools/Stage.h"

inline constexpr double kRestoreBound = 2.0;
inline constexpr double kRemoveBound = 1.0;

struct SpillSample {
    VeloxaSample::Sample keyed;
    bool restore;

    bool operator==(const SpillSample&) const = default;
};

// Whether `knobs` make of each sample what was asked where the node stands as in `setting`.
std::vector<bool> spill_agrees(const Setting& setting, const KnobStorage& knobs,
                               std::span<const SpillSample> samples);

// What the analysis may turn; the veiling only where samples are partly transparent.
std::vector<Dial> spill_dials(const Setting& setting, bool transparent);
Tuning analyse_spill(const Setting& setting, std::span<const SpillSample> samples);
