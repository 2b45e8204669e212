#include "stages/VlxComputePFG.h"

#include "stages/ProcessedForegroundKernel.h"

using namespace Zo::Image;

const char* VlxComputePFG::input_label(int input, char* buffer) const {
    if (input == 0) return "Foreground";
    if (input == 1) return "Cleanplate";
    if (input == 2) return "ClippedMatte";
    if (input == 3) return "PreMatte";
    return buffer;
}

void VlxComputePFG::setup() {
    Hash hash;
    append(hash, controls::kBackingColor);
    append(hash, {controls::kCleanPlate});
    append(hash, controls::kBgVeiling);
    append_input(hash, 0);
    append_input(hash, 2);
    append_input(hash, 3);
    if (has_clean_plate()) append_input(hash, 1);
    invalidate(hash);
}

void VlxComputePFG::_validate(bool /*for_real*/) {
    validate_writing(kMaskRgba, kMaskAlpha);
}

void VlxComputePFG::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgb, count);
    if (has_clean_plate()) input(1).request(x, y, r, t, kMaskRgb, count);
    input(2).request(x, y, r, t, kMaskAlpha, count);
    input(3).request(x, y, r, t, kMaskAlpha, count);
}

void VlxComputePFG::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(kMaskRgba)) {
        row.get(input(0), y, channels);
        return;
    }
    Row in(x, r);
    in.get(input(0), y, channels + kMaskRgb - kMaskAlpha);
    Row matte(x, r);
    matte.get(input(2), y, kMaskAlpha);
    Row pre_matte(x, r);
    pre_matte.get(input(3), y, kMaskAlpha);

    row.share(in, channels - kMaskRgba);
    const auto roles = role_channels(controls());
    const VeilParams params = veil_params(controls());
    const VeilMattes mattes{matte[kAlpha], pre_matte[kAlpha]};
    const RoleOutput out = role_output(row, roles);
    float* alpha = row.overwrite(kAlpha);
    if (!has_clean_plate()) {
        unveil_constant(params, role_pixels(in, roles), mattes, out, alpha, row.width());
        return;
    }
    Row plate(x, r);
    plate.get(input(1), y, kMaskRgb);
    unveil_clean_plate(params, role_pixels(in, roles), role_pixels(plate, roles), mattes, out, alpha,
                       row.width());
}
