#include "screen/SmartInterpolKernel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "screen/NearestClear.h"
#include "stages/ChannelRoles.h"

namespace {

constexpr int kMostSide = 1 << 28;

// Lines worked on side by side, so that none waits for its own last sum.
constexpr int kLines = 4;
// Columns copied at once: their pixels of a row fill a cache line.
constexpr int kColumns = 16;
// Pixels of a line whose sums are kept before they are divided.
constexpr int kChunk = 64;
// Rows that are asked for ahead; no two pixels of a column share a page, so nobody else does it.
constexpr int kAhead = 16;

using Quad = float __attribute__((vector_size(16)));
using IntQuad = std::int32_t __attribute__((vector_size(16)));

Quad load(const float* from) {
    Quad result;
    __builtin_memcpy(&result, from, sizeof result);
    return result;
}
void store(float* to, Quad v) {
    __builtin_memcpy(to, &v, sizeof v);
}
void transpose(Quad (&v)[4]) {
    const Quad a = __builtin_shufflevector(v[0], v[1], 0, 4, 1, 5);
    const Quad b = __builtin_shufflevector(v[2], v[3], 0, 4, 1, 5);
    const Quad c = __builtin_shufflevector(v[0], v[1], 2, 6, 3, 7);
    const Quad d = __builtin_shufflevector(v[2], v[3], 2, 6, 3, 7);
    v[0] = __builtin_shufflevector(a, b, 0, 1, 4, 5);
    v[1] = __builtin_shufflevector(a, b, 2, 3, 6, 7);
    v[2] = __builtin_shufflevector(c, d, 0, 1, 4, 5);
    v[3] = __builtin_shufflevector(c, d, 2, 3, 6, 7);
}

// Copied lines: three floats a pixel, read and written four at a time.
constexpr int kPixel = 3;

// Floats of a copied line: room for the last pixel's fourth, and lines of a power of two start in different
// sets of the cache.
std::size_t pitch(int length) {
    return static_cast<std::size_t>(length) * kPixel + 17;
}

// A window over a copied line that only moves forward. Positions outside the line are not counted. The sums
// are not formed afresh for each window, so their rounding, and a NaN that entered, goes along.
template <class Steps>
struct Window {
    const float* line;
    const Steps* distance;  // the line's pixels' distances
    std::int32_t begin = 0;
    std::int32_t end = 0;
    Quad sum{};

    // To [centre - reach, centre + reach]; pixels enter before others leave.
    [[gnu::always_inline]] void move(std::int32_t length, std::int32_t centre, std::int32_t reach) {
        const std::int32_t new_end = std::min(centre + reach + 1, length);
        const std::int32_t new_begin = std::max(centre - reach, 0);
        for (; end < new_end; ++end) sum += load(line + std::ptrdiff_t{end} * kPixel);
        for (; begin < new_begin; ++begin) sum -= load(line + std::ptrdiff_t{begin} * kPixel);
    }
};

// What windows hold at the pixels of a chunk.
struct Sums {
    Quad sum[kChunk][kLines];
    std::int32_t count[kChunk * kLines];  // those of four neighbours in the frame side by side
};

// Moves two windows at a time, so that neither waits for its own last sum, over pixels [begin, end) of their
// lines, whose distances are `step` apart. Distances of neighbours differ by one at most, so a window never
// moves back and always holds its centre.
template <bool kAreColumns, class Steps>
void advance(Window<Steps>* windows, std::int32_t length, std::ptrdiff_t step, std::int32_t begin,
             std::int32_t end, Sums& sums) {
    static_assert(kLines % 2 == 0);
    for (int l = 0; l < kLines; l += 2) {
        Window<Steps> one = windows[l];
        Window<Steps> other = windows[l + 1];
        const auto note = [&](const Window<Steps>& window, std::int32_t i, int line) {
            sums.sum[i - begin][line] = window.sum;
            sums.count[kAreColumns ? (i - begin) * kLines + line : line * kChunk + (i - begin)] =
                window.end - window.begin;
        };
        for (std::int32_t i = begin; i < end; ++i) {
            one.move(length, i, one.distance[i * step]);
            other.move(length, i, other.distance[i * step]);
            note(one, i, l);
            note(other, i, l + 1);
        }
        windows[l] = one;
        windows[l + 1] = other;
    }
}

using Planes = std::array<float*, 3>;

// Four neighbours of a plane, or the last n < 4 and zeros.
Quad load_some(const float* from, int n) {
    if (n == 4) return load(from);
    Quad result{};
    for (int k = 0; k < n; ++k) result[k] = from[k];
    return result;
}
void store_some(float* to, Quad v, int n) {
    if (n == 4) {
        store(to, v);
    } else {
        for (int k = 0; k < n; ++k) to[k] = v[k];
    }
}

void get_pixels(const Planes& planes, std::size_t at, int n, Quad (&pixels)[4]) {
    for (std::size_t k = 0; k < 3; ++k) pixels[k] = load_some(planes[k] + at, n);
    pixels[3] = Quad{};
    transpose(pixels);
}

// The means of windows whose sums are `spacing` apart, half a count added to a sum before it is divided.
void put_means(const Quad* sum, const std::int32_t* count, int spacing, const Planes& planes, std::size_t at,
               int n) {
    Quad v[4];
    for (int k = 0; k < 4; ++k) v[k] = sum[k * spacing];
    transpose(v);
    IntQuad counts;
    __builtin_memcpy(&counts, count, sizeof counts);
    const Quad half = __builtin_convertvector(counts / 2, Quad);
    const Quad divisor = __builtin_convertvector(counts, Quad);
    for (std::size_t k = 0; k < 3; ++k) store_some(planes[k] + at, (v[k] + half) / divisor, n);
}

template <class Steps>
void smooth_rows(int width, int begin, int end, const Steps* distance, const Planes& planes) {
    const auto stride = static_cast<std::size_t>(width);
    const auto first = static_cast<std::size_t>(begin) * stride;
    const auto copy = std::make_unique_for_overwrite<float[]>(pitch(width) * kLines);
    const int rows = end - begin;
    Window<Steps> windows[kLines];
    for (int l = 0; l < kLines; ++l) {
        // Lines that are not there do what the first does.
        const std::size_t row = l < rows ? static_cast<std::size_t>(l) : 0;
        windows[l] = {copy.get() + row * pitch(width), distance + first + row * stride};
    }
    for (int l = 0; l < rows; ++l) {
        float* to = copy.get() + static_cast<std::size_t>(l) * pitch(width);
        const std::size_t at = first + static_cast<std::size_t>(l) * stride;
        for (int x = 0; x < width; x += 4) {
            Quad pixels[4];
            const int n = std::min(4, width - x);
            get_pixels(planes, at + static_cast<std::size_t>(x), n, pixels);
            for (int k = 0; k < n; ++k, to += kPixel) store(to, pixels[k]);
        }
    }
    Sums sums{};
    for (int x = 0; x < width; x += kChunk) {
        const int chunk = std::min(kChunk, width - x);
        advance<false>(windows, width, 1, x, x + chunk, sums);
        for (int l = 0; l < rows; ++l) {
            const std::size_t at = first + static_cast<std::size_t>(l) * stride + static_cast<std::size_t>(x);
            for (int i = 0; i < chunk; i += 4) {
                put_means(&sums.sum[i][l], &sums.count[l * kChunk + i], kLines, planes,
                          at + static_cast<std::size_t>(i), std::min(4, chunk - i));
            }
        }
    }
}

template <class Steps>
void smooth_columns(int width, int height, int begin, int end, const Steps* distance, const Planes& planes) {
    const auto stride = static_cast<std::size_t>(width);
    const auto copy = std::make_unique_for_overwrite<float[]>(pitch(height) * kColumns);
    const auto at = [&](int x, int y) {
        return static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(begin + x);
    };
    const int columns = end - begin;
    Window<Steps> windows[kColumns];
    for (int l = 0; l < kColumns; ++l) {
        const auto column = static_cast<std::size_t>(l < columns ? l : 0);
        windows[l] = {copy.get() + column * pitch(height), distance + at(0, 0) + column};
    }
    for (int y = 0; y < height; ++y) {
        if (y + kAhead < height) {
            for (const float* plane : planes) {
                __builtin_prefetch(plane + at(0, y + kAhead));
                __builtin_prefetch(plane + at(columns - 1, y + kAhead));
            }
        }
        float* const to = copy.get() + std::ptrdiff_t{y} * kPixel;
        for (int x = 0; x < columns; x += 4) {
            Quad pixels[4];
            const int n = std::min(4, columns - x);
            get_pixels(planes, at(x, y), n, pixels);
            for (int k = 0; k < n; ++k)
                store(to + static_cast<std::size_t>(x + k) * pitch(height), pixels[k]);
        }
    }
    Sums sums{};
    for (int y = 0; y < height; y += kChunk) {
        const int chunk = std::min(kChunk, height - y);
        for (int x = 0; x < columns; x += kLines) {
            advance<true>(windows + x, height, width, y, y + chunk, sums);
            for (int i = 0; i < chunk; ++i) {
                put_means(sums.sum[i], &sums.count[i * kLines], 1, planes, at(x, y + i),
                          std::min(4, columns - x));
            }
        }
    }
}

}  // namespace

class SmartInterpol::Frame {
  public:
    virtual ~Frame() = default;
    virtual void add_row(int y, const float* clear) = 0;
    virtual void run(const SmartInterpolParams& params, const Planes& planes, const ParallelLoop& loop) = 0;
};

template <class Steps>
class SmartInterpol::FrameOf final : public Frame {
  public:
    FrameOf(int width, int height) : width_(width), height_(height), nearest_(width, height) {}

    void add_row(int y, const float* clear) override { nearest_.add_row(y, clear); }

    void run(const SmartInterpolParams& params, const Planes& planes, const ParallelLoop& loop) override {
        nearest_.fill(planes, params.backing, loop);
        const Steps* const distance = nearest_.distance();
        loop(0, height_, kLines,
             [&](int begin, int end) { smooth_rows(width_, begin, end, distance, planes); });
        loop(0, width_, kColumns,
             [&](int begin, int end) { smooth_columns(width_, height_, begin, end, distance, planes); });
    }

  private:
    int width_;
    int height_;
    NearestClear<Steps> nearest_;
};

SmartInterpol::SmartInterpol(int width, int height) {
    const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    if (width > kMostSide || height > kMostSide || pixels > std::size_t{1} << 32U) {
        throw std::length_error("frame too large for the smart interpolation");
    }
    if (width + height <= kMostSteps<std::int16_t>) {
        frame_ = std::make_unique<FrameOf<std::int16_t>>(width, height);
    } else {
        frame_ = std::make_unique<FrameOf<std::int32_t>>(width, height);
    }
}

SmartInterpol::~SmartInterpol() = default;

void SmartInterpol::add_row(int y, const float* clear) {
    frame_->add_row(y, clear);
}

void SmartInterpol::run(const SmartInterpolParams& params, const Planes& planes, const ParallelLoop& loop) {
    frame_->run(params, planes, loop);
}

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
