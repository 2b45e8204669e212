#include "stages/VlxFilmCorrection.h"

#include <algorithm>

#include "ZoImage/GeneralTile.h"
#include "framework/LineGroups.h"

using namespace Zo::Image;

namespace {

constexpr Channel kLowest = kRed;
constexpr Channel kHighest = kGreen;
constexpr ChannelSet kExtremes = ChannelSet(kLowest) + kHighest;

}  // namespace

void VlxFilmCorrectionH::_validate(bool for_real) {
    VlxBaseFilter::_validate(for_real);
    info_.channels += kExtremes;
}

void VlxFilmCorrectionH::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    VlxBaseFilter::_request(x, y, r, t, channels - kExtremes + kRed, count);
}

void VlxFilmCorrectionH::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    row.get(input(0), y, channels - kExtremes);
    if (!channels.intersects(kExtremes)) return;
    const int radius = reach(x, r);
    Row wide(x - radius, r + radius);
    wide.get(input(0), y, kRed);
    const float* first = wide[kRed];
    float* lowest = row.overwrite(kLowest);
    float* highest = row.overwrite(kHighest);
    std::copy_n(first, row.width(), lowest);
    std::copy_n(first, row.width(), highest);
    in_groups(
        1, 2 * radius, [&](int k) { return first + k; },
        [&](auto lines) {
            film_lowest(lines, lowest, row.width());
            film_highest(lines, highest, row.width());
        });
}

void VlxFilmCorrectionV::_request(int x, int y, int r, int t, ChannelSet /*channels*/, int count) {
    VlxBaseFilter::_request(x, y, r, t, kExtremes, count);
    input(1).request(x, y, r, t, kMaskRgb, count);
    input(2).request(x, y, r, t, kMaskAlpha, count);
}

void VlxFilmCorrectionV::engine(int y, int x, int r, const ChannelSet& channels, Row& row) {
    if (!channels.intersects(kMaskRgb)) {
        row.get(input(1), y, channels);
        return;
    }
    const GeneralTile tile(input(0), rows_around(y, radius(), x, r), kExtremes);
    if (!tile.valid()) return;
    row.get(input(1), y, channels - kMaskRgb);
    Row image(x, r);
    image.get(input(1), y, kMaskRgb);
    Row matte(x, r);
    matte.get(input(2), y, kMaskAlpha);

    Row extremes(x, r);
    float* lowest = extremes.overwrite(kLowest);
    float* highest = extremes.overwrite(kHighest);
    const auto line = [&](Channel c) { return [&tile, c](int k) { return tile.line(c, k); }; };
    const Box& rows = tile.box();
    std::copy_n(tile.line(kLowest, rows.y), row.width(), lowest);
    std::copy_n(tile.line(kHighest, rows.y), row.width(), highest);
    in_groups(rows.y + 1, rows.t - 1, line(kLowest),
              [&](auto lines) { film_lowest(lines, lowest, row.width()); });
    in_groups(rows.y + 1, rows.t - 1, line(kHighest),
              [&](auto lines) { film_highest(lines, highest, row.width()); });
    film_correct(params_, lowest, highest, matte[kAlpha], {image[kRed], image[kGreen], image[kBlue]},
                 {row.overwrite(kRed), row.overwrite(kGreen), row.overwrite(kBlue)}, row.width());
}

void VlxFilmCorrection::configure() {
    horizontal().set_radius(1);
    vertical().set_radius(1);
    vertical().set_params(film_params(controls()));
}

void VlxFilmCorrection::_validate(bool for_real) {
    VlxFilter_t::_validate(for_real);
    if (!for_real) return;
    vertical().set_input(1, input_op(0));
    vertical().set_input(2, input_op(1));
}

void VlxFilmCorrection::_request(int x, int y, int r, int t, ChannelSet channels, int count) {
    input(0).request(x, y, r, t, channels - kMaskRgb, count);
    input(1).request(x, y, r, t, kMaskAlpha, count);
    last_pass().request(x, y, r, t, kMaskRgb, count);
}

void VlxFilmCorrection::engine(int y, int /*x*/, int /*r*/, const ChannelSet& channels, Row& row) {
    row.get(input(0), y, channels - kMaskRgb);
    if (channels.intersects(kMaskRgb)) row.get(last_pass(), y, channels & kMaskRgb);
}
