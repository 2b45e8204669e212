#include "screen/SmartInterpolKernel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "screen/NearestClear.h"
#include "stages/ChannelRoles.h"

namespace {

// Lines worked on side by side, so that none waits for its own last sum; columns fill cache lines.
constexpr int kRows = 4;
constexpr int kColumns = 32;

// Red, green, blue, and 0 so that a pixel fills a vector.
using Colour = std::array<float, 4>;

void add(Colour& sum, const Colour& c) {
    for (std::size_t k = 0; k < 4; ++k) sum[k] += c[k];
}

void subtract(Colour& sum, const Colour& c) {
    for (std::size_t k = 0; k < 4; ++k) sum[k] -= c[k];
}

// A window over a line that only moves forward. Positions outside the line are not counted. The sums are
// not formed afresh for each window, so their rounding, and a NaN that entered, goes along.
// The line's pixels are kStep apart.
template <std::ptrdiff_t kStep>
class Window {
  public:
    // To [centre - distance, centre + distance]; pixels enter before others leave.
    void move(const Colour* line, std::int32_t length, std::int32_t centre, std::int32_t distance) {
        const std::int32_t end = std::min(centre + distance + 1, length);
        const std::int32_t begin = std::max(centre - distance, 0);
        Colour sum = sum_;
        for (; end_ < end; ++end_) add(sum, line[end_ * kStep]);
        for (; begin_ < begin; ++begin_) subtract(sum, line[begin_ * kStep]);
        sum_ = sum;
    }

    // The mean, half a count added to the sum before it is divided.
    Colour mean() const {
        const std::int32_t count = end_ - begin_;
        const float half = static_cast<float>(count / 2);
        const float divisor = static_cast<float>(count);
        Colour result;
        for (std::size_t k = 0; k < 4; ++k) result[k] = (sum_[k] + half) / divisor;
        return result;
    }

  private:
    std::int32_t begin_ = 0;
    std::int32_t end_ = 0;
    Colour sum_{};
};

// Where the pixels of lines side by side lie in a plane: pixel i of line l at first + i * step + l * spacing.
struct Lines {
    std::size_t first;
    std::size_t step;
    std::size_t spacing;
    int length;
    int count;

    std::size_t at(int i, int l) const {
        return first + static_cast<std::size_t>(i) * step + static_cast<std::size_t>(l) * spacing;
    }
};

// A copy of up to kMost lines, interleaved: pixel i of line l at i * kMost + l.
template <int kMost, class Pixel>
std::vector<Colour> gather(const Lines& lines, const Pixel& pixel) {
    std::vector<Colour> colours(static_cast<std::size_t>(lines.length) * kMost);
    for (int i = 0; i < lines.length; ++i) {
        Colour* const interleaved = colours.data() + std::ptrdiff_t{i} * kMost;
        for (int l = 0; l < lines.count; ++l) interleaved[l] = pixel(lines.at(i, l));
    }
    return colours;
}

// Smooths gathered lines. Distances of neighbours differ by one at most, so a window never moves back and
// always holds its centre.
template <int kMost>
void smooth(const Lines& lines, const std::vector<Colour>& colours, const std::int32_t* distance,
            const std::array<float*, 3>& out) {
    std::array<Window<kMost>, kMost> windows;
    for (int i = 0; i < lines.length; ++i) {
        for (int l = 0; l < lines.count; ++l) {
            const std::size_t p = lines.at(i, l);
            Window<kMost>& window = windows[static_cast<std::size_t>(l)];
            window.move(colours.data() + l, lines.length, i, distance[p]);
            const Colour mean = window.mean();
            for (std::size_t k = 0; k < 3; ++k) out[k][p] = mean[k];
        }
    }
}

}  // namespace

SmartInterpolParams smart_interpol_params(const ControlBlock& controls) {
    const ControlTriple backing = controls.get(controls::kBackingColor);
    const auto color_index = controls.get(controls::kColorIndex);
    SmartInterpolParams params{};
    for (int role = 0; role < 3; ++role) {
        params.backing[static_cast<std::size_t>(ChannelForRole(color_index, role))] =
            static_cast<float>(backing[static_cast<std::size_t>(role)]);
    }
    return params;
}

void smart_interpol(const SmartInterpolParams& params, int width, int height, const float* clear,
                    const std::array<const float*, 3>& image, const std::array<float*, 3>& out,
                    const ParallelLoop& loop) {
    const NearestClear near = find_nearest_clear(width, height, clear, loop);
    const auto stride = static_cast<std::size_t>(width);

    // What the row pass reads, and what it leaves for the column pass.
    const auto filled = [&](std::size_t p) -> Colour {
        if (!near.any) return {params.backing[0], params.backing[1], params.backing[2], 0.0f};
        const std::size_t source = near.source[p];
        return {image[0][source], image[1][source], image[2][source], 0.0f};
    };
    const auto by_row = [&](std::size_t p) -> Colour { return {out[0][p], out[1][p], out[2][p], 0.0f}; };

    loop(0, height, kRows, [&](int begin, int end) {
        const Lines lines{static_cast<std::size_t>(begin) * stride, 1, stride, width, end - begin};
        smooth<kRows>(lines, gather<kRows>(lines, filled), near.distance.get(), out);
    });
    loop(0, width, kColumns, [&](int begin, int end) {
        const Lines lines{static_cast<std::size_t>(begin), stride, 1, height, end - begin};
        smooth<kColumns>(lines, gather<kColumns>(lines, by_row), near.distance.get(), out);
    });
}
