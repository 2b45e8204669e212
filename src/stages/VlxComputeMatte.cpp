#include "stages/VlxComputeMatte.h"

#include "stages/MatteKernel.h"

using namespace Zo::Image;

const char* VlxComputeMatte::input_label(int input, char* buffer) const {
    if (input == 0) return "Foreground";
    if (input == 1) return "Cleanplate";
    return buffer;
}

void VlxComputeMatte::setup() {
    Hash hash;
    append(hash, controls::kBackingColor);
    append(hash, {controls::kMatteDensityBrights, controls::kMatteDensityDarks, controls::kMatteDensityCool,
                  controls::kMatteDensityWarm, controls::kCleanPlate});
    append_input(hash, 0);
    if (controls().get(controls::kCleanPlate) != 0) append_input(hash, 1);
    invalidate(hash);
}

void VlxComputeMatte::_validate(bool /*for_real*/) {
    validate_writing(kMaskAlpha, kMaskAlpha);
}

void VlxComputeMatte::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels - kMaskAlpha, count);
    if (controls().get(controls::kCleanPlate) != 0) input(1).request(x, y, r, t, channels, count);
}

void VlxComputeMatte::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.has(kAlpha)) {
        row.get(input(0), y, channels);
        return;
    }
    row.get(input(0), y, channels + kMaskRgb - kMaskAlpha);
    const auto roles = role_channels(controls());
    const MatteParams params = matte_params(controls());
    float* matte = row.overwrite(kAlpha);
    if (controls().get(controls::kCleanPlate) == 0) {
        matte_constant(params, role_pixels(row, roles), matte, row.width());
        return;
    }
    Row plate(x, r);
    plate.get(input(1), y, kMaskRgb);
    matte_clean_plate(params, role_pixels(row, roles), role_pixels(plate, roles), matte, row.width());
}
