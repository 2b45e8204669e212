#include "screen/VlxCleanup.h"

#include "screen/CleanupKernel.h"

using namespace Zo::Image;

void VlxCleanup::setup() {
    Hash hash;
    append(hash, {controls::kCleanUpRecover, controls::kCleanUp});
    append_input(hash, 0);
    invalidate(hash);
}

void VlxCleanup::_validate(bool /*for_real*/) {
    validate_writing(kMaskRgba, kMaskNone);
}

void VlxCleanup::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgba, count);
}

void VlxCleanup::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    Row in(x, r);
    in.get(input(0), y, channels + kMaskAlpha);
    row.share(in, channels - kMaskRgba);
    const CleanupParams params = cleanup_params(controls());
    const ChannelSet colours = channels & kMaskRgb;
    for (const Channel c : colours) {
        cleanup_colour(params, in[kAlpha], in[c], row.overwrite(c), row.width());
    }
    if (channels.has(kAlpha)) cleanup_matte(params, in[kAlpha], row.overwrite(kAlpha), row.width());
}
