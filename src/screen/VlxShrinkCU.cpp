#include "screen/VlxShrinkCU.h"

#include <algorithm>

#include "ZoImage/Convert.h"
#include "ZoImage/GeneralTile.h"
#include "framework/LineGroups.h"
#include "screen/ShrinkCUKernel.h"

using namespace Zo::Image;

void VlxShrinkCUBase::set_radius(float radius) {
    const int whole = to_int(radius);
    VlxBaseFilter::set_radius(whole + 1);
    fraction_ = radius - static_cast<float>(whole);
}

void VlxShrinkCUH::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    row.get(input(0), y, channels - kMaskAlpha);
    if (!channels.has(kAlpha)) return;
    const int half_width = reach(x, r);
    Row wide(x - half_width, r + half_width);
    wide.get(input(0), y, kMaskAlpha);
    shrink_cu_row(wide[kAlpha] + half_width, static_cast<std::size_t>(half_width), fraction(),
                  wide.overwrite(kRed), row.overwrite(kAlpha), row.width());
}

void VlxShrinkCUV::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.has(kAlpha)) {
        row.get(input(0), y, channels);
        return;
    }
    const GeneralTile tile(input(0), rows_around(y, radius(), x, r), kMaskAlpha);
    if (!tile.valid()) return;
    row.get(input(0), y, channels - kMaskAlpha);
    float* out = row.overwrite(kAlpha);
    std::fill_n(out, row.width(), 0.0f);
    const Box whole = rows_around(y, radius() - 1, x, r);
    in_groups(
        whole.y, whole.t - 1, [&](int k) { return tile.line(kAlpha, k); },
        [&](auto lines) { shrink_cu_lines(lines, out, row.width()); });
    // At the edge of the box these are rows of weight 1 again.
    shrink_cu_end(tile.line(kAlpha, tile.box().y), fraction(), out, row.width());
    shrink_cu_end(tile.line(kAlpha, tile.box().t - 1), fraction(), out, row.width());
}

void VlxShrinkCU::configure() {
    const auto pixels = [this](int index) { return static_cast<float>(controls().get(index)) / 10.0f; };
    horizontal().set_radius(pixels(controls::kCleanUpShrink));
    vertical().set_radius(pixels(controls::kCUShrinkV));
}
