#include "stages/MatteCorrectKernel.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "stages/KernelMath.h"

using namespace kernel;

namespace {

// Lines worked on side by side: neighbouring columns share cache lines and vectors, a few rows keep the
// processor busy while each waits for its own last comparison.
constexpr int kColumns = 32;
constexpr int kRows = 4;
constexpr int kRowGrain = 16;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Not max_of and min_of: here the second operand must win against a NaN, whatever it is.
constexpr float higher(float v, float extreme) {
    return v > extreme ? v : extreme;
}
constexpr float lower(float v, float extreme) {
    return v < extreme ? v : extreme;
}

template <MatteLimit kLimit, class T>
constexpr T limited(T a, T b) {
    return kLimit == MatteLimit::kAbove ? (b > a ? a : b) : (a > b ? a : b);
}

template <MatteLimit kLimit>
float squeezed(float matte, float low, float high) {
    constexpr double kEnd = kLimit == MatteLimit::kAbove ? 255.0 : 0.0;
    const double lo = static_cast<double>(low);
    const double hi = static_cast<double>(high);
    const double new_lo = limited<kLimit>(kEnd, lo);
    const double new_hi = limited<kLimit>(kEnd, hi);
    const double range = hi - lo;
    const double part = (static_cast<double>(matte) - lo) / (range != 0.0 ? range : 1.0);
    return static_cast<float>(new_lo + (new_hi - new_lo) * part);
}

// Running extremes of lines side by side.
template <int kMost>
struct Extremes {
    float high[kMost];
    float low[kMost];

    void clear() {
        std::fill_n(high, kMost, -kInfinity);
        std::fill_n(low, kMost, kInfinity);
    }
};

// Corrects up to kMost lines that lie side by side: rows, or columns, which then are combined with what the
// rows gave. Sliding extremes after van Herk and Gil-Werman: the line is cut into groups of one span's
// length; the span of a group's pixel is the tail of the span of the group's first pixel and the head of
// what follows that, and extremes of tails and heads are kept as they grow.
template <MatteLimit kLimit, bool kAreColumns, int kMost>
void correct_lines(const float* matte, const float* pre_matte, float* result, std::size_t width, int length,
                   int lines, std::ptrdiff_t radius, std::vector<Extremes<kMost>>& tails) {
    const std::size_t step = kAreColumns ? width : 1;
    const std::size_t spacing = kAreColumns ? 1 : width;
    const auto fold = [&](std::ptrdiff_t i, Extremes<kMost>& extremes) {
        const float* pixel = matte + static_cast<std::size_t>(i) * step;
        for (int l = 0; l < lines; ++l) {
            const float v = pixel[static_cast<std::size_t>(l) * spacing];
            extremes.high[l] = higher(v, extremes.high[l]);
            extremes.low[l] = lower(v, extremes.low[l]);
        }
    };

    const std::ptrdiff_t group = 2 * radius + 1;
    for (std::ptrdiff_t start = 0; start < length; start += group) {
        Extremes<kMost> extremes;
        extremes.clear();
        const std::ptrdiff_t first = std::max<std::ptrdiff_t>(start - radius, 0);
        for (auto i = std::min<std::ptrdiff_t>(start + radius, length - 1); i >= first; --i) {
            fold(i, extremes);
            tails[static_cast<std::size_t>(i - first)] = extremes;
        }
        extremes.clear();
        const std::ptrdiff_t end = std::min<std::ptrdiff_t>(start + group, length);
        for (std::ptrdiff_t i = start; i < end; ++i) {
            if (i + radius < length) fold(i + radius, extremes);
            const auto tail_start = std::max<std::ptrdiff_t>(i - radius, first);
            const Extremes<kMost>& tail = tails[static_cast<std::size_t>(tail_start - first)];
            const std::size_t at = static_cast<std::size_t>(i) * step;
            for (int l = 0; l < lines; ++l) {
                const std::size_t p = at + static_cast<std::size_t>(l) * spacing;
                const float m = matte[p];
                const float corrected = squeezed<kLimit>(m, lower(tail.low[l], extremes.low[l]),
                                                         higher(tail.high[l], extremes.high[l]));
                if constexpr (kAreColumns) {
                    const float by_row = result[p];
                    const float both = limited<kLimit>(by_row, corrected);
                    result[p] = 0.0f >= pre_matte[p] ? both : by_row;
                } else {
                    result[p] = 0.0f >= pre_matte[p] ? corrected : m;
                }
            }
        }
    }
}

// A span never reaches further than the line's other end.
std::ptrdiff_t reach(std::int32_t radius, int length) {
    return std::clamp(radius, 0, length - 1);
}

// As many tails as a span has pixels inside the line.
template <int kMost>
std::vector<Extremes<kMost>> make_tails(std::ptrdiff_t radius, int length) {
    return std::vector<Extremes<kMost>>(
        static_cast<std::size_t>(std::min<std::ptrdiff_t>(2 * radius + 1, length)));
}

template <MatteLimit kLimit>
void correct(std::int32_t radius, int width, int height, const float* matte, const float* pre_matte,
             float* result, const ParallelLoop& loop) {
    const auto stride = static_cast<std::size_t>(width);
    loop(0, height, kRowGrain, [&](int begin, int end) {
        const std::ptrdiff_t span = reach(radius, width);
        auto tails = make_tails<kRows>(span, width);
        for (int y = begin; y < end; y += kRows) {
            const std::size_t at = static_cast<std::size_t>(y) * stride;
            correct_lines<kLimit, false>(matte + at, pre_matte + at, result + at, stride, width,
                                         std::min(kRows, end - y), span, tails);
        }
    });
    loop(0, width, kColumns, [&](int begin, int end) {
        const std::ptrdiff_t span = reach(radius, height);
        auto tails = make_tails<kColumns>(span, height);
        for (int x = begin; x < end; x += kColumns) {
            correct_lines<kLimit, true>(matte + x, pre_matte + x, result + x, stride, height,
                                        std::min(kColumns, end - x), span, tails);
        }
    });
}

}  // namespace

void matte_correct(MatteLimit limit, std::int32_t radius, int width, int height, const float* matte,
                   const float* pre_matte, float* result, const ParallelLoop& loop) {
    if (limit == MatteLimit::kAbove) {
        correct<MatteLimit::kAbove>(radius, width, height, matte, pre_matte, result, loop);
    } else {
        correct<MatteLimit::kBelow>(radius, width, height, matte, pre_matte, result, loop);
    }
}
