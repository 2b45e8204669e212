#include "stages/VlxOutputMatte.h"

#include "stages/OutputMatteKernel.h"

using namespace Zo::Image;

void VlxOutputMatte::setup() {
    Hash hash;
    append_input(hash, 0);
    invalidate(hash);
}

void VlxOutputMatte::_validate(bool /*for_real*/) {
    validate_writing(kMaskAlpha, kMaskAlpha);
}

void VlxOutputMatte::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskAlpha, count);
}

void VlxOutputMatte::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.has(kAlpha)) {
        row.get(input(0), y, channels);
        return;
    }
    Row in(x, r);
    in.get(input(0), y, channels);
    row.share(in, channels - kMaskAlpha);
    output_matte(in[kAlpha], row.overwrite(kAlpha), row.width());
}
