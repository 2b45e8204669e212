#include "keyer/StrokePixels.h"

#include <algorithm>
#include <cmath>

using namespace Zo::Image;

namespace {

bool finite(const VeloxaSample::Sample& sample) {
    return std::all_of(sample.begin(), sample.end(), [](float v) { return std::isfinite(v); });
}

VeloxaSample::Sample pixel_of(const Row& row, int i) {
    return {row[kRed][i], row[kGreen][i], row[kBlue][i], row[kAlpha][i]};
}

using Measures = std::array<float, 7>;

Measures measures(const VeloxaSample::Sample& s) {
    return {s[0], s[1], s[2], s[3], s[0] - s[1], s[1] - s[2], s[2] - s[0]};
}

}  // namespace

std::vector<StrokePixel> read_pixels(Iop& first, Iop* second, Iop* keep, const Box& box) {
    std::vector<StrokePixel> pixels;
    int step_x = 1;
    int step_y = 1;
    if (decimate(box.x, box.y, box.r, box.t, step_x, step_y) == 0) return pixels;
    const auto ask = [&](Iop* image, ChannelSet channels) {
        if (image != nullptr) image->request(box.x, box.y, box.r, box.t, channels, 1);
    };
    ask(&first, kMaskRgba);
    ask(second, kMaskRgba);
    ask(keep, kMaskAlpha);
    for (int y = box.y; y < box.t; y += step_y) {
        Row row(box.x, box.r);
        Row other(box.x, box.r);
        Row kept(box.x, box.r);
        row.get(first, y, kMaskRgba);
        if (second != nullptr) other.get(*second, y, kMaskRgba);
        if (keep != nullptr) kept.get(*keep, y, kMaskAlpha);
        for (int i = 0; i < box.r - box.x; i += step_x) {
            if (keep != nullptr && !(kept[kAlpha][i] != 0.0f)) continue;
            const StrokePixel pixel{pixel_of(row, i), pixel_of(other, i)};
            if (finite(pixel.first) && finite(pixel.second)) pixels.push_back(pixel);
        }
    }
    return pixels;
}

std::vector<StrokePixel> extremes(const std::vector<StrokePixel>& pixels) {
    if (pixels.empty()) return {};
    std::array<std::size_t, 14> picks{};
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const Measures here = measures(pixels[i].first);
        for (std::size_t m = 0; m < here.size(); ++m) {
            if (here[m] < measures(pixels[picks[2 * m]].first)[m]) picks[2 * m] = i;
            if (here[m] > measures(pixels[picks[2 * m + 1]].first)[m]) picks[2 * m + 1] = i;
        }
    }
    std::sort(picks.begin(), picks.end());
    std::vector<StrokePixel> result;
    for (std::size_t i = 0; i < picks.size(); ++i) {
        if (i == 0 || picks[i] != picks[i - 1]) result.push_back(pixels[picks[i]]);
    }
    return result;
}
