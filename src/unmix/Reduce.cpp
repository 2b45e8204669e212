#include "unmix/Reduce.h"

#include <algorithm>
#include <array>

#include "unmix/MorphologyKernel.h"

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
            const int whole = side == 2 ? width / 2 : 0;
            const float share = 0.5f / static_cast<float>(to - from);
            for (int n = 0; n < whole; ++n) {
                const std::size_t at = 2 * static_cast<std::size_t>(n);
                out[n] = (sums[at] + sums[at + 1]) * share;
            }
            for (int n = whole; n < means.width(); ++n) {
                const int left = n * side;
                const int right = std::min(left + side, width);
                float sum = 0.0f;
                for (int x = left; x < right; ++x) sum += sums[static_cast<std::size_t>(x)];
                out[n] = sum / static_cast<float>((right - left) * (to - from));
            }
        }
    });
}

namespace {

constexpr int kPiece = 1024;  // pixels
constexpr std::size_t kMostPixels = kPiece + 4;
constexpr std::size_t kWidestCell = 256;

// A piece of a row; cells are far narrower than it.
void piece_between_cells(const Floats& cells, int side, int y, int x, int r, float* out) {
    const float v = std::clamp((static_cast<float>(y) + 0.5f) / static_cast<float>(side) - 0.5f, 0.0f,
                               static_cast<float>(cells.height() - 1));
    const int low = static_cast<int>(v);
    const float* const a = cells.row(low);
    const float* const b = cells.row(std::min(low + 1, cells.height() - 1));
    // The cells whose middles lie around, the outermost repeated, and the pixels between them.
    const int half = side / 2;
    const int first = (x + half) / side - 1;
    const int last = (r - 1 + half) / side;
    std::array<float, kMostPixels> line;
    std::array<float, kWidestCell> pixels;
    const int from = std::max(first, 0);
    const int to = std::min(last, cells.width() - 1);
    mix_rows(a + from, b + from, v - static_cast<float>(low), line.data() + (from - first),
             static_cast<std::size_t>(to - from) + 1);
    if (from > first) line.front() = line[1];
    for (int n = to + 1; n <= last; ++n)
        line[static_cast<std::size_t>(n - first)] = line[static_cast<std::size_t>(to - first)];
    // What is left of the first gap, whole gaps, and what begins the last.
    const float* cell = line.data();
    const auto partly = [&](int skip, int n, float* pixel) {
        between_middles(cell, side, pixels.data(), 1);
        std::copy_n(pixels.data() + skip, n, pixel);
        ++cell;
    };
    const int skipped = x - (first * side + half);
    int done = 0;
    if (skipped > 0) {
        done = std::min(side - skipped, r - x);
        partly(skipped, done, out);
    }
    const int gaps = (r - x - done) / side;
    between_middles(cell, side, out + done, static_cast<std::size_t>(gaps));
    cell += gaps;
    done += gaps * side;
    if (done < r - x) partly(0, r - x - done, out + done);
}

}  // namespace

void between_cells(const Floats& cells, int side, int y, int x, int r, float* out) {
    for (int from = x; from < r; from += kPiece) {
        piece_between_cells(cells, side, y, from, std::min(from + kPiece, r), out + (from - x));
    }
}

}  // namespace unmix
