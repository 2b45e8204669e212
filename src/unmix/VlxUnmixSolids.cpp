#include "unmix/VlxUnmixSolids.h"

#include "unmix/ShotModel.h"
#include "unmix/SolidsFit.h"
#include "unmix/VlxUnmixBacking.h"

using namespace Zo::Image;

const char* VlxUnmixSolids::input_label(int input, char* buffer) const {
    return input == 1 ? "gm" : input == 2 ? "hm" : buffer;
}

void VlxUnmixSolids::append_params(Hash& hash) const {
    hash.append(static_cast<double>(params().solid));
    append_colours(hash, params().solids);
    append_shot(hash);
}

bool VlxUnmixSolids::compute(Lock& helpers) {
    if (!backing_.make(helpers)) return false;
    unmix::Floats garbage;
    unmix::Floats holdout;
    if (!read_matte(1, garbage, helpers) || !read_matte(2, holdout, helpers)) return false;
    const auto taught = colours_in_light(params().solids);
    return run_kernel(*this, helpers, [&](const ParallelLoop& loop) {
        const unmix::BackingModel& backing = backing_.model();
        unmix::find_solids(backing, garbage, holdout, {params().solid, taught}, segmentation_, loop);
        if (const auto spill = params().shot ? params().shot->mean_spill() : std::nullopt) {
            segmentation_.spill = *spill;
        }
        unmix::find_unknown(backing, garbage, segmentation_, loop);
    });
}

void VlxUnmixSolids::show(int y, int x, ChannelSet channels, Row& row) {
    const int side = backing_.model().scale.fine();
    const auto write = [&](Channel channel, const auto& value) {
        if (!channels.has(channel)) return;
        float* const out = row.overwrite(channel);
        for (int n = 0; n < static_cast<int>(row.width()); ++n) out[n] = static_cast<float>(value(x + n));
    };
    write(kRed, [&](int n) { return segmentation_.source(n / side, y / side); });
    write(kGreen, [&](int n) { return segmentation_.unknown(n, y); });
    write(kBlue, [&](int n) { return segmentation_.rough(n / side, y / side); });
    write(kAlpha, [&](int n) { return segmentation_.solid(n / side, y / side); });
}
