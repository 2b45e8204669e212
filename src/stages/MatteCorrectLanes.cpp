#include <cstddef>
#include <cstdint>

#include "lanes/KernelMath.h"
#include "lanes/Pack.h"
#include "lanes/Quad.h"
#include "stages/MatteCorrectKernel.h"

namespace LANES {

namespace {

using namespace kernel;

// Lines are read and written a pack at a time, and turned in fours.
static_assert(kMatteLines % kPack == 0 && kMatteLines % 4 == 0);

constexpr float kInfinity = __builtin_inff();

// Marks a pixel that keeps its matte: a NaN that no arithmetic here leaves.
constexpr std::uint32_t kKept = 0xffffffff;

std::uint32_t bits(float v) {
    return __builtin_bit_cast(std::uint32_t, v);
}

template <MatteLimit kLimit, class T>
[[gnu::always_inline]] inline T limited(T a, T b) {
    return kLimit == MatteLimit::kAbove ? min_of(a, b) : max_of(a, b);
}

template <MatteLimit kLimit>
[[gnu::always_inline]] inline Floats squeezed(Floats matte, Floats low, Floats high) {
    const Doubles end = kLimit == MatteLimit::kAbove ? 255.0 : 0.0;
    const Doubles lo = wide(low);
    const Doubles hi = wide(high);
    const Doubles range = hi - lo;
    const Doubles part = (wide(matte) - lo) / choose(range != Doubles(0.0), range, Doubles(1.0));
    const Doubles new_lo = limited<kLimit>(end, lo);
    return one_nan(narrow(new_lo + (limited<kLimit>(end, hi) - new_lo) * part));
}

// Running extremes. Of operands that do not compare the second stands: the extreme, not a NaN.
struct Extremes {
    Floats high = -kInfinity;
    Floats low = kInfinity;

    [[gnu::always_inline]] void take(Floats other_high, Floats other_low) {
        high = max_of(other_high, high);
        low = min_of(other_low, low);
    }
};

// The tile's corrected values, kMatteLines a step; the lines' pixels lie side by side, `step` floats apart.
// Sliding extremes after van Herk and Gil-Werman: the line is cut into groups of one span's length; the span
// of a group's pixel is the tail of the span of the group's first pixel and the head of what follows that,
// and extremes of tails and heads are kept as they grow.
template <MatteLimit kLimit>
void correct(const MatteTile& tile, const float* matte, std::ptrdiff_t step, float* tails, float* corrected) {
    const std::ptrdiff_t radius = tile.radius;
    const std::ptrdiff_t group = 2 * radius + 1;
    for (std::ptrdiff_t start = tile.begin; start < tile.end; start += group) {
        const std::ptrdiff_t end = start + group < tile.end ? start + group : tile.end;
        const std::ptrdiff_t first = start > radius ? start - radius : 0;
        const std::ptrdiff_t last = start + radius < tile.length ? start + radius : tile.length - 1;
        for (std::ptrdiff_t l = 0; l < kMatteLines; l += static_cast<std::ptrdiff_t>(kPack)) {
            const auto tail = [&](std::ptrdiff_t i) { return tails + (i - first) * 2 * kMatteLines + l; };
            Extremes extremes;
            for (std::ptrdiff_t i = last; i >= first; --i) {
                const Floats v = load(matte + i * step + l);
                extremes.take(v, v);
                store(tail(i), extremes.high);
                store(tail(i) + kMatteLines, extremes.low);
            }
            extremes = {};
            for (std::ptrdiff_t i = start; i < end; ++i) {
                if (i + radius < tile.length) {
                    const Floats v = load(matte + (i + radius) * step + l);
                    extremes.take(v, v);
                }
                const float* const from = tail(i - radius > first ? i - radius : first);
                Extremes both = extremes;
                both.take(load(from), load(from + kMatteLines));
                store(corrected + (i - tile.begin) * kMatteLines + l,
                      squeezed<kLimit>(load(matte + i * step + l), both.low, both.high));
            }
        }
    }
}

void correct(const MatteTile& tile, const float* matte, std::ptrdiff_t step, float* tails, float* corrected) {
    if (tile.limit == MatteLimit::kAbove) {
        correct<MatteLimit::kAbove>(tile, matte, step, tails, corrected);
    } else {
        correct<MatteLimit::kBelow>(tile, matte, step, tails, corrected);
    }
}

// What a tile reads of its lines.
struct Reach {
    std::ptrdiff_t first;
    std::ptrdiff_t end;
};
Reach reach(const MatteTile& tile) {
    return {tile.begin > tile.radius ? tile.begin - tile.radius : 0,
            tile.end + tile.radius < tile.length ? tile.end + tile.radius : tile.length};
}

}  // namespace

void correct_matte_rows(const MatteTile& tile) {
    const Reach read = reach(tile);
    float* const columns = tile.scratch;
    float* const corrected = columns + (read.end - read.first) * kMatteLines;
    float* const tails = corrected + (tile.end - tile.begin) * kMatteLines;

    // Rows beyond the tile's last repeat that one.
    const float* rows[kMatteLines];
    for (int l = 0; l < kMatteLines; ++l) {
        rows[l] = tile.matte + (l < tile.lines ? l : tile.lines - 1) * tile.width;
    }
    std::ptrdiff_t x = read.first;
    for (; x + 4 <= read.end; x += 4) {
        float* const to = columns + (x - read.first) * kMatteLines;
        for (int l = 0; l < kMatteLines; l += 4) {
            Quad v[4];
            for (int k = 0; k < 4; ++k) v[k] = load_quad(rows[l + k] + x);
            transpose(v);
            for (int k = 0; k < 4; ++k) store_quad(to + k * kMatteLines + l, v[k]);
        }
    }
    for (; x < read.end; ++x) {
        for (int l = 0; l < kMatteLines; ++l) columns[(x - read.first) * kMatteLines + l] = rows[l][x];
    }

    MatteTile local = tile;
    local.begin -= read.first;
    local.end -= read.first;
    local.length = read.end - read.first;
    correct(local, columns, kMatteLines, tails, corrected);

    const float kept = __builtin_bit_cast(float, kKept);
    for (int l = 0; l < tile.lines; l += 4) {
        const int lines = tile.lines - l < 4 ? tile.lines - l : 4;
        for (x = tile.begin; x + 4 <= tile.end; x += 4) {
            Quad v[4];
            const float* const from = corrected + (x - tile.begin) * kMatteLines + l;
            for (int k = 0; k < 4; ++k) v[k] = load_quad(from + k * kMatteLines);
            transpose(v);
            for (int k = 0; k < lines; ++k) {
                const Quad pre = load_quad(tile.pre_matte + (l + k) * tile.width + x);
                store_quad(tile.result + (l + k) * tile.width + x, pre <= 0.0f ? v[k] : kept + Quad{});
            }
        }
        for (; x < tile.end; ++x) {
            for (int k = 0; k < lines; ++k) {
                const float pre = tile.pre_matte[(l + k) * tile.width + x];
                tile.result[(l + k) * tile.width + x] =
                    pre <= 0.0f ? corrected[(x - tile.begin) * kMatteLines + l + k] : kept;
            }
        }
    }
}

void correct_matte_columns(const MatteTile& tile) {
    const Reach read = reach(tile);
    float* const padded = tile.scratch;
    float* const corrected = padded + (read.end - read.first) * kMatteLines;
    float* const tails = corrected + (tile.end - tile.begin) * kMatteLines;
    const bool pads = tile.lines < kMatteLines;
    if (pads) {
        for (std::ptrdiff_t y = read.first; y < read.end; ++y) {
            for (int l = 0; l < kMatteLines; ++l) {
                padded[(y - read.first) * kMatteLines + l] =
                    l < tile.lines ? tile.matte[y * tile.width + l] : 0.0f;
            }
        }
    }
    MatteTile local = tile;
    local.begin -= read.first;
    local.end -= read.first;
    local.length = read.end - read.first;
    correct(local, pads ? padded : tile.matte + read.first * tile.width, pads ? kMatteLines : tile.width,
            tails, corrected);

    for (std::ptrdiff_t y = tile.begin; y < tile.end; ++y) {
        const float* const matte = tile.matte + y * tile.width;
        const float* const by_column = corrected + (y - tile.begin) * kMatteLines;
        float* const result = tile.result + y * tile.width;
        if (!pads) {  // the columns to the right come next, and no two of their pixels share a page
            __builtin_prefetch(matte + kMatteLines);
            __builtin_prefetch(result + kMatteLines, 1);
        }
        for (int l = 0; l < tile.lines; ++l) {
            const float by_row = result[l];
            const float both = tile.limit == MatteLimit::kAbove ? kernel::min_of(by_row, by_column[l])
                                                                : kernel::max_of(by_row, by_column[l]);
            result[l] = bits(by_row) == kKept ? matte[l] : both;
        }
    }
}

}  // namespace LANES
