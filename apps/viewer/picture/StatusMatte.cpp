#include "picture/StatusMatte.h"

#include <algorithm>
#include <vector>

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

constexpr float kHalf = 0.5f;

// What there is near by.
constexpr std::uint8_t kHigh = 1;  // above one half
constexpr std::uint8_t kLow = 2;   // up to it

using Bytes = std::vector<std::uint8_t>;

// What each row's pixels have within reach in their row.
Bytes near_in_rows(const Image& image) {
    const std::size_t width = image.width();
    const std::size_t reach = kEdgeReach;
    Bytes near(width * image.height());
    Bytes wide(width + 2 * reach), twice(wide);
    for (std::size_t y = 0; y < image.height(); ++y) {
        const float* const alpha = image.line(kAlpha, image.info.box.y + static_cast<int>(y));
        std::fill(wide.begin(), wide.end(), std::uint8_t{0});
        for (std::size_t x = 0; x < width; ++x) {
            wide[x + reach] =
                static_cast<std::uint8_t>((alpha[x] > kHalf ? kHigh : 0) | (alpha[x] <= kHalf ? kLow : 0));
        }
        // After each round a byte has what lies in so many to its right.
        std::size_t span = 1;
        for (; 2 * span <= 2 * reach + 1; span *= 2) {
            for (std::size_t x = 0; x + span < wide.size(); ++x) {
                twice[x] = static_cast<std::uint8_t>(wide[x] | wide[x + span]);
            }
            std::copy(wide.end() - static_cast<std::ptrdiff_t>(span), wide.end(),
                      twice.end() - static_cast<std::ptrdiff_t>(span));
            std::swap(wide, twice);
        }
        const std::size_t rest = 2 * reach + 1 - span;
        for (std::size_t x = 0; x < width; ++x) {
            near[y * width + x] = static_cast<std::uint8_t>(wide[x] | wide[x + rest]);
        }
    }
    return near;
}

struct RowCounts {
    std::int32_t clear = 0, solid = 0, between = 0, broken = 0, leaks = 0, holes = 0;
};

RowCounts count_row(const float* alpha, const std::uint8_t* near, std::size_t width) {
    RowCounts counts;
    for (std::size_t x = 0; x < width; ++x) {
        const float a = alpha[x];
        const auto between = static_cast<std::int32_t>(a > 0.0f) & static_cast<std::int32_t>(a < 1.0f);
        const auto low = static_cast<std::int32_t>(a <= kHalf);
        const std::int32_t no_high = 1 - (near[x] & kHigh);
        const std::int32_t no_low = 1 - ((near[x] & kLow) >> 1);
        counts.clear += static_cast<std::int32_t>(a == 0.0f);
        counts.solid += static_cast<std::int32_t>(a == 1.0f);
        counts.broken += static_cast<std::int32_t>(a != a);
        counts.between += between;
        counts.leaks += between & low & no_high;
        counts.holes += between & (1 - low) & no_low;
    }
    return counts;
}

}  // namespace

StatusCounts status_counts(const Image& image) {
    StatusCounts counts;
    const std::size_t width = image.width();
    const std::size_t height = image.height();
    const auto pixels = static_cast<std::int64_t>(width * height);
    if (image.info.box.empty()) return counts;
    if (!image.has(kAlpha)) {
        counts.clear = pixels;
        return counts;
    }
    const Bytes in_rows = near_in_rows(image);
    Bytes near(width);
    for (std::size_t y = 0; y < height; ++y) {
        const std::size_t from = y < kEdgeReach ? 0 : y - kEdgeReach;
        const std::size_t to = std::min(y + kEdgeReach + 1, height);
        std::copy_n(in_rows.data() + from * width, width, near.data());
        for (std::size_t other = from + 1; other < to; ++other) {
            const std::uint8_t* const row = in_rows.data() + other * width;
            for (std::size_t x = 0; x < width; ++x) near[x] = static_cast<std::uint8_t>(near[x] | row[x]);
        }
        const float* const alpha = image.line(kAlpha, image.info.box.y + static_cast<int>(y));
        const RowCounts row = count_row(alpha, near.data(), width);
        counts.clear += row.clear;
        counts.solid += row.solid;
        counts.between += row.between;
        counts.broken += row.broken;
        counts.leaks += row.leaks;
        counts.holes += row.holes;
    }
    counts.beyond = pixels - counts.clear - counts.solid - counts.between - counts.broken;
    return counts;
}

}  // namespace veloxa::viewer
