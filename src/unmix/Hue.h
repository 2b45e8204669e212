// The most frequent hue of what leads in the screen's primary, on a plane that light does not move.
#pragma once

#include "unmix/BackingModel.h"

namespace unmix {

// To a side of the plane.
inline constexpr int kHueBins = 64;

// What the screen's primary has beyond the greater of the others.
inline float lead_of(const std::array<float, 3>& colour, const BackingModel& model) {
    return colour[static_cast<std::size_t>(model.screen)] -
           std::max(colour[static_cast<std::size_t>(model.others[0])],
                    colour[static_cast<std::size_t>(model.others[1])]);
}

struct HueMasks {
    Bytes sure;                  // near the hue
    Bytes may;                   // twice as far from it
    std::vector<double> counts;  // cells by hue, the first other channel's share slowest
};

// Cells of `model.means`; those of `garbage` above a half are neither. All masks are 0 where nothing leads.
// Counts that are not empty stand in for this frame's.
HueMasks find_hue(const BackingModel& model, const Floats& garbage, std::vector<double> counts);

}  // namespace unmix
