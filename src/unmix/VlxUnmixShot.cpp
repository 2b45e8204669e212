#include "unmix/VlxUnmixShot.h"

#include <algorithm>

#include "unmix/Candidates.h"
#include "unmix/Morphology.h"
#include "unmix/SpillTable.h"
#include "unmix/VlxUnmixBacking.h"
#include "unmix/VlxUnmixClean.h"
#include "unmix/VlxUnmixSolids.h"

using namespace Zo::Image;

namespace {

void note_backing(const unmix::BackingModel& backing, ShotModel& model) {
    model.width = backing.scale.width;
    model.height = backing.scale.height;
    std::ranges::copy(backing.sigma, model.sigma.begin());
    std::ranges::copy(backing.noise, model.noise.begin());
    std::ranges::copy(backing.colour, model.colour.begin());
    for (std::size_t bin = 0; bin < backing.hue.size(); ++bin) {
        if (backing.hue[bin] > 0.0) model.hue[bin] = backing.hue[bin];
    }
    if (!backing.cubic) return;
    model.base_frames = 1;
    for (std::size_t c = 0; c < 3; ++c) {
        model.base[c][0] = static_cast<double>(backing.cubic->low[c]);
        model.base[c][1] = static_cast<double>(backing.cubic->high[c]);
        std::ranges::copy(backing.cubic->coefficients[c], model.base[c].begin() + 2);
    }
}

}  // namespace

bool VlxUnmixShot::compute(Lock& helpers) {
    if (!backing_.make(helpers) || !solids_.make(helpers) || !clean_.make(helpers)) return false;
    return run_kernel(*this, helpers, [&](const ParallelLoop& loop) {
        const unmix::BackingModel& backing = backing_.model();
        const unmix::Segmentation& segmentation = solids_.segmentation();
        model_ = {};
        if (!backing.found) return;
        model_.frames = 1;
        model_.screen = params().screen;
        model_.encoding = params().encoding;
        note_backing(backing, model_);
        if (unmix::any(segmentation.solid)) {
            model_.spill_frames = 1;
            model_.spill = static_cast<double>(segmentation.spill);
        }
        model_.rims = unmix::find_rims(backing, segmentation, loop);
        model_.own = unmix::count_own_colours(backing, clean_.alpha(), loop);
    });
}

void VlxUnmixShot::show(int y, int x, ChannelSet channels, Row& row) {
    for (const Channel channel : channels) row.refer(channel, clean_.alpha().row(y) + x);
}
