#include "unmix/Reduce.h"

#include <algorithm>

namespace unmix {

void cell_means(const Floats& picture, int side, Floats& means, const ParallelLoop& loop) {
    const int width = picture.width();
    means.resize((width + side - 1) / side, (picture.height() + side - 1) / side);
    loop(0, means.height(), 8, [&](int begin, int end) {
        std::vector<float> sums(static_cast<std::size_t>(width));
        for (int cell = begin; cell < end; ++cell) {
            const int from = cell * side;
            const int to = std::min(from + side, picture.height());
            std::copy_n(picture.row(from), width, sums.data());
            for (int y = from + 1; y < to; ++y) {
                const float* const row = picture.row(y);
                for (int x = 0; x < width; ++x) sums[static_cast<std::size_t>(x)] += row[x];
            }
            float* const out = means.row(cell);
            for (int n = 0; n < means.width(); ++n) {
                const int left = n * side;
                const int right = std::min(left + side, width);
                float sum = 0.0f;
                for (int x = left; x < right; ++x) sum += sums[static_cast<std::size_t>(x)];
                out[n] = sum / static_cast<float>((right - left) * (to - from));
            }
        }
    });
}

void between_cells(const Floats& cells, int side, int y, int x, int r, float* out) {
    const auto place = [&](int pixel) {
        return (static_cast<float>(pixel) + 0.5f) / static_cast<float>(side) - 0.5f;
    };
    const float v = std::clamp(place(y), 0.0f, static_cast<float>(cells.height() - 1));
    const int low = static_cast<int>(v);
    const float up = v - static_cast<float>(low);
    const float* const a = cells.row(low);
    const float* const b = cells.row(std::min(low + 1, cells.height() - 1));
    const int last = cells.width() - 1;
    const auto mixed = [&](int n) {
        const int at = std::clamp(n, 0, last);
        return a[at] + up * (b[at] - a[at]);
    };
    // Pixels from a cell's middle to the next one's.
    const int half = side / 2;
    int n = (x - half) < 0 ? -1 : (x - half) / side;
    for (int pixel = x; pixel < r; ++n) {
        const int end = std::min((n + 1) * side + half, r);
        const float left = mixed(n);
        const float slope = mixed(n + 1) - left;
        const float middle = static_cast<float>(n * side + half) - 0.5f;
        for (; pixel < end; ++pixel) {
            out[pixel - x] = left + slope * ((static_cast<float>(pixel) - middle) / static_cast<float>(side));
        }
    }
}

}  // namespace unmix
