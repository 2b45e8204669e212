#include "screen/VlxShrink.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "ZoImage/GeneralTile.h"
#include "framework/LineGroups.h"
#include "screen/ShrinkKernel.h"

using namespace Zo::Image;

void VlxShrinkH::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    row.get(input(0), y, channels - kMaskAlpha);
    if (!channels.has(kAlpha)) return;
    const int radius = reach(x, r);
    Row wide(x - radius, r + radius);
    wide.get(input(0), y, kMaskAlpha);
    shrink_row(wide[kAlpha] + radius, static_cast<std::size_t>(radius), wide.overwrite(kRed),
               row.overwrite(kAlpha), row.width());
}

void VlxShrinkV::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.has(kAlpha)) {
        row.get(input(0), y, channels);
        return;
    }
    const GeneralTile tile(input(0), rows_around(y, radius(), x, r), kMaskAlpha);
    if (!tile.valid()) return;
    row.get(input(0), y, channels - kMaskAlpha);
    const Box& rows = tile.box();
    const auto line_of = [&](int k) { return tile.line(kAlpha, k); };
    float* out = row.overwrite(kAlpha);
    std::copy_n(line_of(std::clamp(y, rows.y, rows.t - 1)), row.width(), out);
    in_groups(rows.y, rows.t - 1, line_of, [&](auto lines) { shrink_lines(lines, out, row.width()); });
}

void VlxShrink::setup() {
    Hash hash = state();
    hash.append(controls().overlayShrinkV);
    invalidate(hash);
}

void VlxShrink::configure() {
    const auto enlarged = [this](std::int32_t radius) {
        return static_cast<int>(
            std::min<std::int64_t>(std::int64_t{radius} + mode_, std::numeric_limits<int>::max()));
    };
    horizontal().set_radius(enlarged(controls().get(controls::kScreenOverlayShrink)));
    vertical().set_radius(enlarged(controls().overlayShrinkV));
}
