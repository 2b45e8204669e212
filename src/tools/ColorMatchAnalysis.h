// Turns darks, midtones and brights of the Color tab so that samples of the keyed foreground come out as
// samples of the background, within kMatchBound levels of 255.
//
// Each side is sorted by brightness and cut into as many bands as there are samples on the poorer side, at
// most three; the mean of a band is matched with that of the other side's band. Channels are matched one
// after the other, each with its own three knobs.
#pragma once

#include "tools/Stage.h"

inline constexpr double kMatchBound = 2.0;

struct ColorMatch {
    Tuning tuning;                 // misses: by band, dark to bright, of the role that fits worst
    ControlTriple fg{-1, -1, -1};  // the mean samples in role order; -1 where there are none
    ControlTriple bg{-1, -1, -1};
};

// What the analysis may turn of a channel.
std::vector<Dial> color_match_dials(int component);
// Colours on the working scale.
ColorMatch match_colors(const Setting& setting, std::span<const VeloxaSample::Sample> keyed,
                        std::span<const VeloxaSample::Sample> background);
