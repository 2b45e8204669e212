#include "unmix/Morphology.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace unmix {

namespace {

// One step: each pixel becomes `grown` where it or one of its four neighbours is.
Bytes step(const Bytes& mask, std::uint8_t grown) {
    Bytes out(mask.width(), mask.height());
    for (int y = 0; y < mask.height(); ++y) {
        const std::uint8_t* const below = mask.row(std::max(y - 1, 0));
        const std::uint8_t* const here = mask.row(y);
        const std::uint8_t* const above = mask.row(std::min(y + 1, mask.height() - 1));
        std::uint8_t* const to = out.row(y);
        const int last = mask.width() - 1;
        for (int x = 0; x <= last; ++x) {
            const std::uint8_t left = here[std::max(x - 1, 0)];
            const std::uint8_t right = here[std::min(x + 1, last)];
            const int all = below[x] & above[x] & here[x] & left & right;
            const int some = below[x] | above[x] | here[x] | left | right;
            to[x] = static_cast<std::uint8_t>(grown != 0 ? some : all);
        }
    }
    return out;
}

}  // namespace

bool any(const Bytes& mask) {
    for (std::size_t i = 0; i < mask.size(); ++i) {
        if (mask[i] != 0) return true;
    }
    return false;
}

Bytes eroded(const Bytes& mask, int steps) {
    Bytes out = mask;
    for (int n = 0; n < steps; ++n) out = step(out, 0);
    return out;
}

Bytes dilated(const Bytes& mask, int steps) {
    Bytes out = mask;
    for (int n = 0; n < steps; ++n) out = step(out, 1);
    return out;
}

void box_mean(const Floats& picture, int radius, Floats& mean) {
    const int width = picture.width();
    mean.resize(width, picture.height());
    const float scale = 1.0f / static_cast<float>((2 * radius + 1) * (2 * radius + 1));
    std::vector<float> sums(static_cast<std::size_t>(width));
    for (int y = 0; y < picture.height(); ++y) {
        std::ranges::fill(sums, 0.0f);
        for (int d = -radius; d <= radius; ++d) {
            const float* const row = picture.row(std::clamp(y + d, 0, picture.height() - 1));
            for (int x = 0; x < width; ++x) sums[static_cast<std::size_t>(x)] += row[x];
        }
        for (int x = 0; x < width; ++x) {
            float sum = 0.0f;
            for (int d = -radius; d <= radius; ++d) {
                sum += sums[static_cast<std::size_t>(std::clamp(x + d, 0, width - 1))];
            }
            mean(x, y) = scale * sum;
        }
    }
}

void box_most(Floats& picture, int radius) {
    const Floats from = picture;
    const int last_x = picture.width() - 1;
    const int last_y = picture.height() - 1;
    Floats along(picture.width(), picture.height());
    for (int y = 0; y <= last_y; ++y) {
        for (int x = 0; x <= last_x; ++x) {
            float most = from(x, y);
            for (int n = std::max(x - radius, 0); n <= std::min(x + radius, last_x); ++n) {
                most = std::max(most, from(n, y));
            }
            along(x, y) = most;
        }
    }
    for (int y = 0; y <= last_y; ++y) {
        std::copy_n(along.row(y), picture.width(), picture.row(y));
        for (int n = std::max(y - radius, 0); n <= std::min(y + radius, last_y); ++n) {
            const float* const other = along.row(n);
            for (int x = 0; x <= last_x; ++x) picture(x, y) = std::max(picture(x, y), other[x]);
        }
    }
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
        const int right = std::min(end * kStrip, width);
        std::vector<float> steps(static_cast<std::size_t>(right - left), far);
        const auto walk = [&](int y, bool merge) {
            const std::uint8_t* const from = mask.row(y) + left;
            float* const to = along.row(y) + left;
            for (int x = 0; x < right - left; ++x) {
                float& n = steps[static_cast<std::size_t>(x)];
                n = from[x] == 0 ? 0.0f : std::min(n + 1.0f, far);
                to[x] = merge ? std::min(to[x], n) : n;
            }
        };
        for (int y = 0; y < height; ++y) walk(y, false);
        std::ranges::fill(steps, far);
        for (int y = height - 1; y >= 0; --y) walk(y, true);
    });
    loop(0, height, 16, [&](int begin, int end) {
        std::vector<float> padded(static_cast<std::size_t>(width + 2 * reach), far * far);
        for (int y = begin; y < end; ++y) {
            float* const middle = padded.data() + reach;
            const float* const from = along.row(y);
            for (int x = 0; x < width; ++x) middle[x] = from[x] * from[x];
            float* const to = out.row(y);
            std::copy_n(middle, width, to);
            for (int d = 1; d < reach; ++d) {
                const auto square = static_cast<float>(d * d);
                const float* const before = middle - d;
                const float* const after = middle + d;
                for (int x = 0; x < width; ++x) {
                    to[x] = std::min(to[x], std::min(before[x], after[x]) + square);
                }
            }
            for (int x = 0; x < width; ++x) to[x] = std::min(std::sqrt(to[x]), most);
        }
    });
}

Bytes opened(const Bytes& mask, float radius, const ParallelLoop& loop) {
    Floats depth;
    distance(mask, radius + 1.0f, depth, loop);
    Bytes outside(mask.width(), mask.height());
    for (std::size_t i = 0; i < mask.size(); ++i) outside[i] = depth[i] > radius ? 0 : 1;
    distance(outside, radius + 1.0f, depth, loop);
    for (std::size_t i = 0; i < mask.size(); ++i) outside[i] = depth[i] <= radius ? 1 : 0;
    return outside;
}

}  // namespace unmix
