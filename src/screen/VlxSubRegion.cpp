#include "screen/VlxSubRegion.h"

#include "screen/SubRegionKernel.h"

using namespace Zo::Image;

void VlxSubRegion::setup() {
    Hash hash;
    append(hash, controls::kBackingColor);
    append(hash, {controls::kFilmBrights, controls::kFilmDarks, controls::kInnerCoolDensity,
                  controls::kInnerWarmDensity});
    append_input(hash, 0);
    invalidate(hash);
}

void VlxSubRegion::_validate(bool /*for_real*/) {
    validate_writing(kMaskAlpha, kMaskAlpha);
}

void VlxSubRegion::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgb, count);
}

void VlxSubRegion::engine(int y, int /*x*/, int /*r*/, const ChannelSet& channels, Row& row) {
    row.get(input(0), y, channels.has(kAlpha) ? (channels + kMaskRgb) - kMaskAlpha : channels);
    if (!channels.has(kAlpha)) return;
    sub_region(sub_region_params(controls()), role_pixels(row, role_channels(controls())),
               row.overwrite(kAlpha), row.width());
}
