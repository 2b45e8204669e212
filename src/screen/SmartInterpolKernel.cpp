#include "screen/SmartInterpolKernel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "screen/NearestClear.h"
#include "stages/ChannelRoles.h"

namespace {

constexpr int kRowGrain = 8;
constexpr int kColumns = 16;  // one cache line of a row

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
class Window {
  public:
    Window(const Colour* line, std::int32_t length) : line_(line), length_(length) {}

    // To [centre - distance, centre + distance]; pixels enter before others leave.
    void move(std::int32_t centre, std::int32_t distance) {
        const std::int32_t end = std::min(centre + distance + 1, length_);
        const std::int32_t begin = std::max(centre - distance, 0);
        while (end_ < end) add(sum_, line_[end_++]);
        while (begin_ < begin) subtract(sum_, line_[begin_++]);
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
    const Colour* line_;
    std::int32_t length_;
    std::int32_t begin_ = 0;
    std::int32_t end_ = 0;
    Colour sum_{};
};

// Distances of neighbours differ by one at most, so the window never moves back and always holds its
// centre.
void smooth_line(const Colour* line, const std::int32_t* distance, std::int32_t length, Colour* smoothed) {
    Window window(line, length);
    for (std::int32_t i = 0; i < length; ++i) {
        window.move(i, distance[i]);
        smoothed[i] = window.mean();
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
    const auto rows = static_cast<std::size_t>(height);

    loop(0, height, kRowGrain, [&](int begin, int end) {
        const auto& backing = params.backing;
        std::vector<Colour> line(stride, Colour{backing[0], backing[1], backing[2], 0.0f});
        std::vector<Colour> smoothed(stride);
        for (int y = begin; y < end; ++y) {
            const std::size_t at = static_cast<std::size_t>(y) * stride;
            for (std::size_t x = 0; near.any && x < stride; ++x) {
                const std::size_t source = near.source[at + x];
                line[x] = {image[0][source], image[1][source], image[2][source], 0.0f};
            }
            smooth_line(line.data(), near.distance.data() + at, width, smoothed.data());
            for (std::size_t k = 0; k < 3; ++k) {
                for (std::size_t x = 0; x < stride; ++x) out[k][at + x] = smoothed[x][k];
            }
        }
    });

    loop(0, width, kColumns, [&](int begin, int end) {
        const auto first = static_cast<std::size_t>(begin);
        const auto count = static_cast<std::size_t>(end - begin);
        std::vector<Colour> lines(count * rows);  // a copy of what the rows left, column after column
        std::vector<std::int32_t> distances(count * rows);
        std::vector<Colour> smoothed(rows);
        for (std::size_t y = 0; y < rows; ++y) {
            const std::size_t at = y * stride + first;
            for (std::size_t i = 0; i < count; ++i) {
                lines[i * rows + y] = {out[0][at + i], out[1][at + i], out[2][at + i], 0.0f};
                distances[i * rows + y] = near.distance[at + i];
            }
        }
        for (std::size_t i = 0; i < count; ++i) {
            smooth_line(lines.data() + i * rows, distances.data() + i * rows, height, smoothed.data());
            for (std::size_t k = 0; k < 3; ++k) {
                for (std::size_t y = 0; y < rows; ++y) out[k][y * stride + first + i] = smoothed[y][k];
            }
        }
    });
}
