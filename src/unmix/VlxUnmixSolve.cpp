#include "unmix/VlxUnmixSolve.h"

#include <cmath>

#include "unmix/ShotModel.h"
#include "unmix/SolveFrame.h"
#include "unmix/VlxUnmixBacking.h"
#include "unmix/VlxUnmixSolids.h"

using namespace Zo::Image;

void VlxUnmixSolve::append_params(Hash& hash) const {
    hash.append(static_cast<double>(params().veil));
    append_colours(hash, params().see_through);
    append_shot(hash);
}

bool VlxUnmixSolve::compute(Lock& helpers) {
    if (!backing_.make(helpers) || !solids_.make(helpers)) return false;
    std::vector<unmix::SeenThrough> see_through;
    const auto colours = colours_in_light(params().see_through);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        see_through.push_back({colours[i], params().see_through[i].alpha});
    }
    return run_kernel(*this, helpers, [&](const ParallelLoop& loop) {
        const unmix::BackingModel& backing = backing_.model();
        const unmix::Segmentation& segmentation = solids_.segmentation();
        const ShotModel* const shot = params().shot.get();
        const bool known = shot != nullptr && !shot->rims.empty();
        const unmix::Candidates candidates = unmix::find_candidates(
            backing, segmentation, {params().veil, see_through, known ? &shot->rims : nullptr}, loop);
        unmix::solve_frame(backing, segmentation, candidates, solution_, loop);
    });
}

void VlxUnmixSolve::show(int y, int x, ChannelSet channels, Row& row) {
    const int width = static_cast<int>(row.width());
    if (channels.has(kRed)) {
        float* const out = row.overwrite(kRed);
        for (int n = 0; n < width; ++n) out[n] = static_cast<float>(solution_.candidate(x + n, y)) / 16.0f;
    }
    if (channels.has(kGreen)) {
        float* const out = row.overwrite(kGreen);
        for (int n = 0; n < width; ++n) out[n] = std::sqrt(solution_.variance(x + n, y));
    }
    if (channels.has(kBlue)) row.refer(kBlue, solution_.deviation.row(y) + x);
    if (channels.has(kAlpha)) row.refer(kAlpha, solution_.alpha.row(y) + x);
}
