#include "screen/VlxComputeIsland.h"

#include "screen/IslandKernel.h"

using namespace Zo::Image;

void VlxComputeIsland::_validate(bool /*for_real*/) {
    validate_writing(kMaskAlpha, kMaskAlpha);
}

void VlxComputeIsland::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    if (controls().get(controls::kRotoOrphans) == 0) {
        input(0).request(x, y, r, t, channels, count);
    } else {
        input(0).request(x - 1, y - 1, r + 1, t + 1, channels + kMaskAlpha, count);
    }
}

void VlxComputeIsland::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    const auto threshold = controls().get(controls::kRotoOrphans);
    if (!channels.has(kAlpha) || threshold == 0) {
        row.get(input(0), y, channels);
        return;
    }
    row.get(input(0), y, channels - kMaskAlpha);
    Row below(x - 1, r + 1);
    Row here(x - 1, r + 1);
    Row above(x - 1, r + 1);
    below.get(input(0), y - 1, kMaskAlpha);
    here.get(input(0), y, kMaskAlpha);
    above.get(input(0), y + 1, kMaskAlpha);
    remove_islands(threshold, below[kAlpha], here[kAlpha], above[kAlpha], row.overwrite(kAlpha), row.width());
}
