// The colours that the subject may have at a pixel, taken from the rims of its solids, spill included.
#pragma once

#include <span>
#include <vector>

#include "framework/ParallelLoop.h"
#include "unmix/BackingModel.h"
#include "unmix/Clusters.h"
#include "unmix/Segmentation.h"
#include "unmix/SolveKernel.h"

namespace unmix {

// Mean and covariance of the solids' colour around the place of a solid that is nearest.
struct NearColour {
    std::array<float, 3> mean;
    std::array<float, 6> covariance;
    float away;  // pixels
};

using NearColours = std::vector<NearColour, PlaneAllocator<NearColour>>;

struct Candidates {
    CommonColour neutral{};
    NearColours nearest;                 // a coarse cell each; empty without solids to take colours from
    std::vector<CommonColour> clusters;  // of the rims' colours, and what was pointed at
    std::vector<Floats> away;  // of each cluster, cells of twice the coarse side: pixels to its nearest
};

// What a see-through thing looks like, in light, where it is so opaque.
struct SeenThrough {
    std::array<float, 3> colour;
    float alpha;
};

struct CandidateSettings {
    float veil = 0.7f;
    std::span<const SeenThrough> see_through;
    const std::vector<ColourGroup>* rims = nullptr;  // in place of this frame's
};

// The groups that clusters are made of.
std::vector<ColourGroup> find_rims(const BackingModel& backing, const Segmentation& segmentation,
                                   const ParallelLoop& loop);

Candidates find_candidates(const BackingModel& backing, const Segmentation& segmentation,
                           const CandidateSettings& settings, const ParallelLoop& loop);

}  // namespace unmix
