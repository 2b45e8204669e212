#include "screen/VlxComputeShadow.h"

#include "screen/ComputeShadowKernel.h"

using namespace Zo::Image;

void VlxComputeShadow::setup() {
    Hash hash;
    append(hash, controls::kBackingColor);
    append_input(hash, 0);
    invalidate(hash);
}

void VlxComputeShadow::_validate(bool /*for_real*/) {
    validate_writing(kMaskAlpha, kMaskAlpha);
}

void VlxComputeShadow::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgba, count);
}

void VlxComputeShadow::engine(int y, int /*x*/, int /*r*/, const ChannelSet& channels, Row& row) {
    row.get(input(0), y, channels.has(kAlpha) ? (channels + kMaskRgb) - kMaskAlpha : channels);
    if (!channels.has(kAlpha)) return;
    compute_shadow(compute_shadow_params(controls()), role_pixels(row, role_channels(controls())),
                   row.overwrite(kAlpha), row.width());
}
