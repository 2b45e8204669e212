#include "stages/VlxColorCorrection.h"

#include "stages/ColorConformKernel.h"

using namespace Zo::Image;

void VlxColorCorrection::setup() {
    Hash hash;
    append(hash, controls::kFgSample);
    append(hash, controls::kBgSample);
    append(hash, controls::kColorConformDarks);
    append(hash, controls::kColorConformMidTones);
    append(hash, controls::kColorConformBrights);
    append(hash, {controls::kHue, controls::kSaturation, controls::kBrightness});
    append_input(hash, 0);
    invalidate(hash);
}

void VlxColorCorrection::_validate(bool /*for_real*/) {
    validate_writing(kMaskRgb, kMaskNone);
}

void VlxColorCorrection::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgba, count);
}

void VlxColorCorrection::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(kMaskRgba)) {
        row.get(input(0), y, channels);
        return;
    }
    Row in(x, r);
    in.get(input(0), y, channels + kMaskRgba);
    row.share(in, channels - kMaskRgb);
    const auto roles = role_channels(controls());
    conform_colour(conform_params(controls()), role_pixels(in, roles), in[kAlpha], role_output(row, roles),
                   row.width());
}
