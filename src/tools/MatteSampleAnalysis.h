// Turns strength and recover of the Cleanup tab so that sampled noise becomes full backing and sampled
// shadows and details are left alone.
//
// Removing noise turns "cleanup" on and sets both knobs. Holding shadows and restoring detail only raises
// "cleanup_recover". Recover is a threshold, so everything darker than a held shadow, down to "shadows_low",
// is held with it.
#pragma once

#include "tools/Stage.h"

struct MatteSample {
    float matte;  // that enters clean-up, 255 = backing
    bool noise;   // to become 255; else to stay
};

// What the analysis may turn.
std::vector<Dial> matte_sample_dials(const Setting& setting, bool remove_noise);
Tuning analyse_matte_samples(const Setting& setting, bool remove_noise, std::span<const MatteSample> samples);
