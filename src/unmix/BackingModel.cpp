#include "unmix/BackingModel.h"

#include <algorithm>

#include "unmix/Reduce.h"

namespace unmix {

namespace {

constexpr float kDarkest = 0.003f;  // what the solve divides by

}  // namespace

void BackingModel::row(int y, int x, int r, const std::array<float*, 3>& out) const {
    const bool plate = !clean[0].empty();
    for (std::size_t c = 0; c < 3; ++c) {
        between_cells(plate ? added[c] : coarse[c], scale.coarse(), y, x, r, out[c]);
        if (!plate) continue;
        const float* const base = clean[c].row(y) + x;
        for (int n = 0; n < r - x; ++n) out[c][n] += base[n];
        if (c != static_cast<std::size_t>(screen)) continue;
        for (int n = 0; n < r - x; ++n) out[c][n] = std::max(out[c][n], kDarkest);
    }
}

void BackingModel::shade_row(int y, int x, int r, float* out) const {
    between_cells(shade, scale.coarse(), y, x, r, out);
}

}  // namespace unmix
