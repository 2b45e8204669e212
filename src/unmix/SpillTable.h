// How much of a colour is spill, learnt from the subject: spill fades inwards, so what lies deep shows the
// colours that are its own.
#pragma once

#include <map>
#include <span>
#include <vector>

#include "framework/ParallelLoop.h"
#include "unmix/BackingModel.h"
#include "unmix/SpillKernel.h"

namespace unmix {

struct SpillSettings {
    float rims = 0.0f;                          // share of the screen's colour that the solids' rims hold
    std::span<const std::array<float, 3>> own;  // colours, in light, that hold no spill
    std::vector<float> counts;                  // in place of this frame's; empty without
};

// What the table is learnt from: the weights of the cells of SpillGrid that have any.
std::map<std::size_t, double> count_own_colours(const BackingModel& backing, const Floats& alpha,
                                                const ParallelLoop& loop);

// A table as SpillGrid lays out; empty where nothing of the frame is opaque.
std::vector<float> learn_spill(const BackingModel& backing, const Floats& alpha,
                               const SpillSettings& settings, const ParallelLoop& loop);

}  // namespace unmix
