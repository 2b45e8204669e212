#include "tools/StrokePixels.h"

#include <algorithm>

#include "tools/Stage.h"

using namespace Zo::Image;

namespace {

VeloxaSample::Sample pixel_of(const Row& row, int i) {
    return {row[kRed][i], row[kGreen][i], row[kBlue][i], row[kAlpha][i]};
}

using Measures = std::array<float, 7>;

Measures measures(const VeloxaSample::Sample& s) {
    return {s[0], s[1], s[2], s[3], s[0] - s[1], s[1] - s[2], s[2] - s[0]};
}

}  // namespace

void render_or_give_up(Renderer& renderer, Iop& image, const Box& box, ChannelSet channels,
                       const Renderer::Sink& sink) {
    if (!renderer.render(image, box, channels, sink)) throw GivenUp();
}

std::vector<StrokePixel> read_pixels(Iop& first, Iop* second, Iop* keep, const StrokeAreas& areas,
                                     const AbortFlag* abort) {
    const StrokeGrid grid(areas);
    // In a render what an operator looks up and down is made once for all that ask for it; where rows are
    // left out, once a row.
    Renderer renderer(1, abort);
    std::size_t count = 0;
    const auto read = [&](Iop* image, ChannelSet channels, const auto& take) {
        if (image == nullptr) return;
        std::size_t before = 0;  // pixels of the parts before
        for (const Box& part : areas.parts()) {
            const auto columns = static_cast<std::size_t>(grid.columns(part));
            const int row = grid.row_from(part.y);
            const int column = grid.column_from(part.x) - part.x;
            const auto every = [&](int y, const Row& pixels) {
                const std::size_t begin =
                    before + static_cast<std::size_t>((y - row) / grid.step_y()) * columns;
                for (std::size_t i = 0; i < columns; ++i) {
                    take(begin + i, pixels, column + static_cast<int>(i) * grid.step_x());
                }
            };
            const int height = grid.step_y() == 1 ? part.height() : 1;
            for (int y = row; y < part.t && columns > 0; y += grid.step_y() * height) {
                render_or_give_up(renderer, *image, {part.x, y, part.r, y + height}, channels, every);
            }
            before += columns * static_cast<std::size_t>(grid.rows(part));
        }
    };
    for (const Box& part : areas.parts()) {
        count += static_cast<std::size_t>(grid.columns(part)) * static_cast<std::size_t>(grid.rows(part));
    }
    std::vector<StrokePixel> all(count);
    std::vector<bool> kept(count, true);
    read(&first, kMaskRgba, [&](std::size_t at, const Row& row, int i) { all[at].first = pixel_of(row, i); });
    read(second, kMaskRgba,
         [&](std::size_t at, const Row& row, int i) { all[at].second = pixel_of(row, i); });
    read(keep, kMaskAlpha, [&](std::size_t at, const Row& row, int i) { kept[at] = row[kAlpha][i] != 0.0f; });
    std::vector<StrokePixel> pixels;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (kept[i] && usable(all[i].first) && usable(all[i].second)) pixels.push_back(all[i]);
    }
    return pixels;
}

std::vector<std::size_t> extremes(const std::vector<VeloxaSample::Sample>& colors) {
    if (colors.empty()) return {};
    std::vector<std::size_t> picks(14);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        const Measures here = measures(colors[i]);
        for (std::size_t m = 0; m < here.size(); ++m) {
            if (here[m] < measures(colors[picks[2 * m]])[m]) picks[2 * m] = i;
            if (here[m] > measures(colors[picks[2 * m + 1]])[m]) picks[2 * m + 1] = i;
        }
    }
    std::sort(picks.begin(), picks.end());
    picks.erase(std::unique(picks.begin(), picks.end()), picks.end());
    return picks;
}
