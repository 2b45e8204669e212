// Turns brights, darks, warm and cool of the Density tab so that sampled pixels become fully opaque while
// the backing keeps its matte.
//
// The backing counts before all samples: each of its pixels must stay within one level of 255 of the matte
// that it had when it was first seen. Both are judged by the output matte. While "screen_correct" is on, that
// is full backing wherever the clear region is, whatever the density says: so is a sample that the region
// holds, which stays unsatisfied. The edge kernel, which looks at places, has no part in it.
#pragma once

#include "tools/Stage.h"

struct PlatedSample {
    VeloxaSample::Sample fg;     // host's values
    VeloxaSample::Sample plate;  // of the clean plate at the same place

    bool operator==(const PlatedSample&) const = default;
};

// The matte of samples, 0 to 255, as the present knobs make it. `decision`, where given, takes the clear
// region's.
std::vector<float> sample_mattes(const Setting& setting, std::span<const PlatedSample> samples,
                                 std::vector<float>* decision = nullptr);

// What the analysis may turn.
std::vector<Dial> add_matte_dials();
// `mattes` are those that the backing has to keep. The misses of the result are the samples', then the
// backing's.
Tuning analyse_add_matte(const Setting& setting, std::span<const PlatedSample> samples,
                         std::span<const PlatedSample> backing, std::span<const float> mattes);
