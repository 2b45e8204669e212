#include "unmix/Morphology.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "unmix/MorphologyKernel.h"

namespace unmix {

namespace {

// One step: each pixel takes what it and its four neighbours have.
Bytes step(const Bytes& mask, const LaneKernel<CrossMask>& kernel) {
    const auto width = static_cast<std::size_t>(mask.width());
    const auto padded = [&](int y, std::vector<std::uint8_t>& row) {
        const std::uint8_t* const from = mask.row(std::clamp(y, 0, mask.height() - 1));
        row.resize(width + 2);
        std::copy_n(from, width, row.begin() + 1);
        row.front() = from[0];
        row.back() = from[width - 1];
    };
    Bytes out(mask.width(), mask.height());
    std::array<std::vector<std::uint8_t>, 3> rows;
    padded(0, rows[0]);
    padded(0, rows[1]);
    for (int y = 0; y < mask.height(); ++y) {
        padded(y + 1, rows[2]);
        kernel({rows[0].data(), rows[1].data(), rows[2].data()}, out.row(y), width);
        std::rotate(rows.begin(), rows.begin() + 1, rows.end());
    }
    return out;
}

}  // namespace

bool any(const Bytes& mask) {
    return std::ranges::any_of(mask, [](std::uint8_t v) { return v != 0; });
}

Bytes eroded(const Bytes& mask, int steps) {
    Bytes out = mask;
    for (int n = 0; n < steps; ++n) out = step(out, shrink_mask);
    return out;
}

Bytes dilated(const Bytes& mask, int steps) {
    Bytes out = mask;
    for (int n = 0; n < steps; ++n) out = step(out, grow_mask);
    return out;
}

void box_mean(const Floats& picture, int radius, Floats& mean, const ParallelLoop& loop) {
    const int width = picture.width();
    mean.resize(width, picture.height());
    const float scale = 1.0f / static_cast<float>((2 * radius + 1) * (2 * radius + 1));
    const auto rows = [&](int begin, int end) {
        std::vector<float> sums(static_cast<std::size_t>(width + 2 * radius));
        float* const middle = sums.data() + radius;
        for (int y = begin; y < end; ++y) {
            const auto row = [&](int d) { return picture.row(std::clamp(y + d, 0, picture.height() - 1)); };
            std::copy_n(row(-radius), width, middle);
            for (int d = -radius + 1; d <= radius; ++d) {
                const float* const from = row(d);
                for (int x = 0; x < width; ++x) middle[x] += from[x];
            }
            std::fill(middle - radius, middle, middle[0]);
            std::fill(middle + width, middle + width + radius, middle[width - 1]);
            float* const out = mean.row(y);
            std::copy_n(middle - radius, width, out);
            for (int d = -radius + 1; d <= radius; ++d) {
                for (int x = 0; x < width; ++x) out[x] += middle[x + d];
            }
            for (int x = 0; x < width; ++x) out[x] *= scale;
        }
    };
    loop(0, picture.height(), 32, rows);
}

void box_most(Floats& picture, int radius, const ParallelLoop& loop) {
    const int last_x = picture.width() - 1;
    const int last_y = picture.height() - 1;
    Floats along(picture.width(), picture.height());
    loop(0, last_y + 1, 32, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            for (int x = 0; x <= last_x; ++x) {
                float most = picture(x, y);
                for (int n = std::max(x - radius, 0); n <= std::min(x + radius, last_x); ++n) {
                    most = std::max(most, picture(n, y));
                }
                along(x, y) = most;
            }
        }
    });
    loop(0, last_y + 1, 32, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            float* const out = picture.row(y);
            std::copy_n(along.row(y), picture.width(), out);
            for (int n = std::max(y - radius, 0); n <= std::min(y + radius, last_y); ++n) {
                const float* const other = along.row(n);
                for (int x = 0; x <= last_x; ++x) out[x] = std::max(out[x], other[x]);
            }
        }
    });
}

void distance(const Bytes& mask, float most, Floats& out, const ParallelLoop& loop) {
    const int width = mask.width();
    const int height = mask.height();
    const float far = std::ceil(most);
    const int reach = static_cast<int>(far);
    out.resize(width, height);
    // Up and down the columns, in strips of them.
    Floats along(width, height);
    constexpr int kStrip = 256;
    loop(0, (width + kStrip - 1) / kStrip, 1, [&](int begin, int end) {
        const int left = begin * kStrip;
        const auto count = static_cast<std::size_t>(std::min(end * kStrip, width) - left);
        std::vector<float> steps(count, far);
        for (int y = 0; y < height; ++y) {
            step_away(mask.row(y) + left, far, steps.data(), count);
            std::copy_n(steps.data(), count, along.row(y) + left);
        }
        std::ranges::fill(steps, far);
        for (int y = height - 1; y >= 0; --y) {
            step_away(mask.row(y) + left, far, steps.data(), count);
            keep_less(steps.data(), along.row(y) + left, count);
        }
    });
    loop(0, height, 16, [&](int begin, int end) {
        std::vector<float> squares(static_cast<std::size_t>(width + 2 * reach + 64));
        for (int y = begin; y < end; ++y) {
            row_distance(along.row(y), reach, most, squares.data(), out.row(y),
                         static_cast<std::size_t>(width));
        }
    });
}

Bytes opened(const Bytes& mask, float radius, const ParallelLoop& loop) {
    Floats depth;
    Bytes out(mask.width(), mask.height());
    const auto each_row = [&](const auto& visit) {
        loop(0, mask.height(), 32, [&](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                const float* const from = depth.row(y);
                std::uint8_t* const to = out.row(y);
                for (int x = 0; x < mask.width(); ++x) to[x] = visit(from[x]) ? 1 : 0;
            }
        });
    };
    distance(mask, radius + 1.0f, depth, loop);
    each_row([&](float d) { return !(d > radius); });
    distance(out, radius + 1.0f, depth, loop);
    each_row([&](float d) { return d <= radius; });
    return out;
}

}  // namespace unmix
