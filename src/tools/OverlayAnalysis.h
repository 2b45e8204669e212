// Turns the screen tolerance, the brights and the darks of the Screen Correct tab so that the clear-region
// decision is 255 on samples of the backing and 0 on samples of the subject.
//
// The decision is the pixel's own: shrinking, orphans and the two mattes, which look at places and not at
// colours, have no part in it. With a clean plate the crude matte counts as it does in the picture.
#pragma once

#include "tools/Stage.h"

struct OverlaySample {
    VeloxaSample::Sample fg;     // host's values
    VeloxaSample::Sample plate;  // of the clean plate at the same place
    bool screen;                 // what the user says that it is

    bool operator==(const OverlaySample&) const = default;
};

// Whether the decision on each sample is what it should be, as the present knobs make it.
std::vector<bool> overlay_agrees(const Setting& setting, std::span<const OverlaySample> samples);

// What the analysis may turn.
std::vector<Dial> overlay_dials(const Setting& setting);
Tuning analyse_overlay(const Setting& setting, std::span<const OverlaySample> samples);
