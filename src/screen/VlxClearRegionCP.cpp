#include "screen/VlxClearRegionCP.h"

#include "screen/CrudeMatteKernel.h"

using namespace Zo::Image;

void VlxClearRegionCP::setup() {
    Hash hash;
    append(hash, controls::kBackingColor);
    append(hash, controls::kScreenTolerance);
    append(hash, {controls::kCleanPlate});
    append_input(hash, 0);
    if (controls().get(controls::kCleanPlate) != 0) append_input(hash, 1);
    invalidate(hash);
}

void VlxClearRegionCP::_validate(bool /*for_real*/) {
    validate_writing(kMaskAlpha, kMaskAlpha);
}

void VlxClearRegionCP::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgb, count);
    if (controls().get(controls::kCleanPlate) != 0) input(1).request(x, y, r, t, channels + kMaskRgb, count);
}

void VlxClearRegionCP::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.has(kAlpha)) {
        row.get(input(0), y, channels);
        return;
    }
    row.get(input(0), y, (channels + kMaskRgb) - kMaskAlpha);
    Row plate(x, r);
    if (controls().get(controls::kCleanPlate) != 0) {
        plate.get(input(1), y, kMaskRgb);
    } else {
        plate.share(row, kMaskRgb);
    }
    const auto roles = role_channels(controls());
    crude_matte(crude_matte_params(controls()), role_pixels(row, roles), role_pixels(plate, roles),
                row.overwrite(kAlpha), row.width());
}
