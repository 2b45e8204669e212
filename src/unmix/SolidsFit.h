// Tells what is surely opaque from what may be soft.
//
// A rough opacity by the screen's colour alone, and by what no colour can be (darker than black, brighter than
// white), is followed inwards from every soft edge by twice that edge's width: a soft edge looks solid long before
// it is. Skin and fair hair lack the screen's colour and would look solid too early: the lack of the region's own
// inside is reckoned with.
#pragma once

#include <span>

#include "framework/ParallelLoop.h"
#include "unmix/BackingModel.h"
#include "unmix/Segmentation.h"

namespace unmix {

struct SolidsSettings {
    float solid = 0.66f;
    std::span<const std::array<float, 3>> taught;  // in light
};

// Mattes of every pixel, empty where there is none. All but `unknown`; see find_unknown.
void find_solids(const BackingModel& backing, const Floats& garbage, const Floats& holdout,
                 const SolidsSettings& settings, Segmentation& found, const ParallelLoop& loop);

// `unknown`: what is off the backing and its surroundings, but for the solids and the garbage.
void find_unknown(const BackingModel& backing, const Floats& garbage, Segmentation& found, const ParallelLoop& loop);

}  // namespace unmix
