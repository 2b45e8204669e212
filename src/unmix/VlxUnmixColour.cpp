#include "unmix/VlxUnmixColour.h"

#include "unmix/ColourFrame.h"
#include "unmix/ShotModel.h"
#include "unmix/SpillTable.h"
#include "unmix/VlxUnmixBacking.h"
#include "unmix/VlxUnmixClean.h"
#include "unmix/VlxUnmixSolids.h"

using namespace Zo::Image;

void VlxUnmixColour::append_params(Hash& hash) const {
    hash.append(static_cast<double>(params().spill));
    append_colours(hash, params().own);
    append_shot(hash);
}

bool VlxUnmixColour::compute(Lock& helpers) {
    if (!backing_.make(helpers) || !solids_.make(helpers) || !clean_.make(helpers)) return false;
    const auto own = colours_in_light(params().own);
    return run_kernel(*this, helpers, [&](const ParallelLoop& loop) {
        const unmix::BackingModel& backing = backing_.model();
        const unmix::SpillSettings settings{
            solids_.segmentation().spill, own,
            params().shot ? params().shot->own_counts() : std::vector<float>{}};
        const std::vector<float> table = unmix::learn_spill(backing, clean_.alpha(), settings, loop);
        const UnspillParams spill{
            table.empty() ? nullptr : table.data(),
            {static_cast<std::size_t>(backing.screen), static_cast<std::size_t>(backing.others[0]),
             static_cast<std::size_t>(backing.others[1])},
            backing.colour,
            params().spill};
        unmix::colour_frame(backing, clean_.alpha(), spill, params().encoding, colour_, loop);
    });
}

void VlxUnmixColour::show(int y, int x, ChannelSet channels, Row& row) {
    std::size_t c = 0;
    for (const Channel channel : kMaskRgb) {
        if (channels.has(channel)) row.refer(channel, colour_[c].row(y) + x);
        ++c;
    }
    if (channels.has(kAlpha)) row.refer(kAlpha, clean_.alpha().row(y) + x);
}
