#include "stages/VlxSpillSuppression.h"

#include "stages/SpillKernel.h"

using namespace Zo::Image;

const char* VlxSpillSuppression::input_label(int input, char* buffer) const {
    if (input == 0) return "";
    if (input == 1) return "PreMatte";
    return buffer;
}

void VlxSpillSuppression::setup() {
    Hash hash;
    append(hash, controls::kBackingColor);
    append(hash, controls::kAmbiance);
    append(hash, {controls::kSpillDarks, controls::kSpillCool, controls::kSpillWarm, controls::kSpillMidTones,
                  controls::kSpillBrights, controls::kStrength});
    append_input(hash, 0);
    append_input(hash, 1);
    invalidate(hash);
}

void VlxSpillSuppression::_validate(bool /*for_real*/) {
    validate_writing(kMaskRgb, kMaskNone);
}

void VlxSpillSuppression::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgba, count);
    input(1).request(x, y, r, t, kMaskAlpha, count);
}

void VlxSpillSuppression::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(kMaskRgba)) {
        row.get(input(0), y, channels);
        return;
    }
    Row in(x, r);
    in.get(input(0), y, channels + kMaskRgba);
    Row pre_matte(x, r);
    pre_matte.get(input(1), y, kMaskAlpha);

    row.share(in, channels - kMaskRgb);
    const auto roles = role_channels(controls());
    suppress_spill(spill_params(controls()), role_pixels(in, roles), in[kAlpha], pre_matte[kAlpha],
                   role_output(row, roles), row.width());
}
