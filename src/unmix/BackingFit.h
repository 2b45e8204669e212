// Fits the model of the backing to a plate.
//
// Cells of the coarse grid whose colour is near the most frequent hue are backing to begin with. A cubic of
// the frame, or the clean plate, is the base; what the plate has beyond it is filled in over what is hidden
// by push-pull, and what agrees with that is backing in the next round, at another brightness too: folds and
// soft shadows of cloth.
#pragma once

#include <span>

#include "framework/ParallelLoop.h"
#include "unmix/BackingModel.h"

struct ShotModel;

namespace unmix {

struct BackingSettings {
    float folds = 1.0f;  // 0: only the backing's own brightness counts; 1: from 0.65 to 1.5 of it
    std::span<const std::array<float, 3>> taught;  // in light
    const ShotModel* shot = nullptr;               // in place of what one frame tells
};

// `model` has its scale, screen, light, and clean where there is one. `garbage`: coarse, the share of a cell
// that is surely outside; empty without.
void fit_backing(BackingModel& model, const Floats& garbage, const BackingSettings& settings,
                 const ParallelLoop& loop);

}  // namespace unmix
