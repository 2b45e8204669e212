#include "framework/VlxBlur.h"

#include <algorithm>

#include "ZoImage/GeneralTile.h"
#include "framework/BlurKernel.h"
#include "framework/LineGroups.h"

using namespace Zo::Image;

namespace {

template <class LineOf>
void blur(int radius, float scale, LineOf&& line_of, Row& row) {
    float* alpha = row.overwrite(kAlpha);
    std::fill_n(alpha, row.width(), 0.0f);
    in_groups(-radius, radius, line_of, [&](auto lines) { blur_add(lines, alpha, row.width()); });
    blur_finish(scale, alpha, row.width());
}

}  // namespace

int VlxBlurBase::set_radius(int radius) {
    const int kept = std::clamp(radius, -kLargestRadius, kLargestRadius);
    VlxBaseFilter::set_radius(kept);
    scale_ = blur_scale(kept);
    return 2 * kept + 1;
}

void VlxBlurH::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    row.get(input(0), y, channels - kMaskAlpha);
    if (!channels.has(kAlpha)) return;
    Row wide(x - radius(), r + radius());
    wide.get(input(0), y, kMaskAlpha);
    const float* centre = wide[kAlpha] + radius();
    blur(
        radius(), scale(), [&](int k) { return centre + k; }, row);
}

void VlxBlurV::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.has(kAlpha)) {
        row.get(input(0), y, channels);
        return;
    }
    const GeneralTile tile(input(0), rows_around(y, radius(), x, r), kMaskAlpha);
    if (!tile.valid()) return;
    row.get(input(0), y, channels - kMaskAlpha);
    const Box& rows = tile.box();
    blur(
        radius(), scale(), [&](int k) { return tile.line(kAlpha, std::clamp(y + k, rows.y, rows.t - 1)); },
        row);
}
