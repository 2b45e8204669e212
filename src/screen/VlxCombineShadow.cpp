#include "screen/VlxCombineShadow.h"

#include "screen/CombineShadowKernel.h"

using namespace Zo::Image;

const char* VlxCombineShadow::input_label(int input, char* buffer) const {
    if (input == 0) return "Foreground";
    if (input == 1) return "Matte";
    if (input == 2) return "Shadow";
    return buffer;
}

void VlxCombineShadow::setup() {
    Hash hash;
    append(hash, controls::kShadowTint);
    append(hash, {controls::kShadowDensity, controls::kShadowHigh, controls::kShadowLow});
    for (int n = 0; n < 3; ++n) append_input(hash, n);
    invalidate(hash);
}

// Only alpha is declared changed, although colour is too: a request for colour alone gets the foreground.
void VlxCombineShadow::_validate(bool /*for_real*/) {
    validate_writing(kMaskAlpha, kMaskAlpha);
}

void VlxCombineShadow::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgba, count);
    input(1).request(x, y, r, t, kMaskAlpha, count);
    input(2).request(x, y, r, t, kMaskAlpha, count);
}

void VlxCombineShadow::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(kMaskRgba)) {
        row.get(input(0), y, channels);
        return;
    }
    Row fg(x, r);
    fg.get(input(0), y, (channels + kMaskRgb) - kMaskAlpha);
    Row matte(x, r);
    matte.get(input(1), y, kMaskAlpha);
    Row shadow(x, r);
    shadow.get(input(2), y, kMaskAlpha);
    row.share(fg, channels - kMaskRgba);
    const auto roles = role_channels(controls());
    combine_shadow(combine_shadow_params(controls()), role_pixels(fg, roles), matte[kAlpha], shadow[kAlpha],
                   role_output(row, roles), row.overwrite(kAlpha), row.width());
}
