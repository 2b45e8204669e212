#include "shot/cleanplate/PlateSamples.h"

#include <algorithm>
#include <cmath>

namespace veloxa {

void PlateSamples::add(std::size_t pixel, const std::array<float, 3>& color) {
    if (!std::all_of(color.begin(), color.end(), [](float v) { return std::isfinite(v); })) return;
    const std::size_t at = static_cast<std::size_t>(counts_[pixel]++);
    for (std::size_t c = 0; c < 3; ++c) values(pixel, c)[at] = color[c];
}

std::array<float, 3> PlateSamples::median(std::size_t pixel) {
    std::array<float, 3> result{};
    for (std::size_t c = 0; c < 3; ++c) {
        const std::span<float> all = values(pixel, c);
        const auto middle = all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2);
        std::nth_element(all.begin(), middle, all.end());
        result[c] = *middle;
        if (all.size() % 2 != 0) continue;
        const double below = static_cast<double>(*std::max_element(all.begin(), middle));
        result[c] = static_cast<float>((below + static_cast<double>(*middle)) / 2.0);
    }
    return result;
}

}  // namespace veloxa
