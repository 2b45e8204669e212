#include "screen/VlxClearFrame.h"

#include "screen/ClearFrameKernel.h"

using namespace Zo::Image;

const char* VlxClearFrame::input_label(int input, char* buffer) const {
    if (input == 0) return "Foreground";
    if (input == 1) return "CleanPlate";
    if (input == 2) return "ClearFrame";
    return buffer;
}

void VlxClearFrame::setup() {
    Hash hash;
    for (int n = 0; n < 3; ++n) append_input(hash, n);
    invalidate(hash);
}

void VlxClearFrame::_validate(bool /*for_real*/) {
    validate_writing(kMaskRgba, kMaskRgba);
}

void VlxClearFrame::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels + kMaskRgba, count);
    input(1).request(x, y, r, t, kMaskRgba, count);
    input(2).request(x, y, r, t, kMaskRgba, count);
}

void VlxClearFrame::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.has(kAlpha)) {
        row.get(input(0), y, channels);
        return;
    }
    Row fg(x, r);
    fg.get(input(0), y, (channels + kMaskRgb) - kMaskAlpha);
    Row plate(x, r);
    plate.get(input(1), y, kMaskRgb);
    Row clear(x, r);
    clear.get(input(2), y, kMaskRgb);
    const auto roles = role_channels(controls());

    float before = kFirstCoverage;
    if (x > info_.box.x && clear_frame_is_black(role_pixels(clear, roles))) {
        Row fg_left(info_.box.x, x);
        fg_left.get(input(0), y, kMaskRgb);
        Row clear_left(info_.box.x, x);
        clear_left.get(input(2), y, kMaskRgb);
        before = clear_frame_last_coverage(role_pixels(fg_left, roles), role_pixels(clear_left, roles),
                                           fg_left.width());
    }
    row.share(fg, channels - kMaskRgba);
    clear_frame(role_pixels(fg, roles), role_pixels(plate, roles), role_pixels(clear, roles), before,
                role_output(row, roles), row.overwrite(kAlpha), row.width());
}
