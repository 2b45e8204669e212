#include "screen/SmartInterpolKernel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "controls/ChannelRoles.h"
#include "lanes/Quad.h"
#include "screen/NearestClear.h"

namespace {

constexpr int kMostSide = 1 << 28;

// Lines worked on at once. Columns' pixels of a row fill a cache line.
constexpr int kRows = 4;
constexpr int kColumns = 16;
// Pixels of a line whose sums are kept before they are divided.
constexpr int kChunk = 32;
// Rows that are asked for ahead; no two pixels of a column share a page, so nobody else does it.
constexpr int kAhead = 8;

using IntQuad = std::int32_t __attribute__((vector_size(16)));

// Copied lines: three floats a pixel, read and written four at a time.
constexpr int kPixel = 3;

// Floats of a copied line: room for the last pixel's fourth, and lines of a power of two start in different
// sets of the cache.
std::size_t pitch(int length) {
    return static_cast<std::size_t>(length) * kPixel + 17;
}

// A window over a copied line that only moves forward. Positions outside the line are not counted. The sums
// are not formed afresh for each window, so their rounding, and a NaN that entered, goes along.
struct Window {
    const float* line;
    const float* end;
    const float* begin;
    Quad sum{};

    Window() = default;
    explicit Window(const float* first) : line(first), end(first), begin(first) {}

    // To [centre - reach, centre + reach]; pixels enter before others leave. Returns how many it holds.
    [[gnu::always_inline]] std::int32_t move(std::int32_t length, std::int32_t centre, std::int32_t reach) {
        const std::int32_t new_end = std::min(centre + reach + 1, length);
        const std::int32_t new_begin = std::max(centre - reach, 0);
        const float* const enter_until = line + std::ptrdiff_t{new_end} * kPixel;
        for (; end != enter_until; end += kPixel) sum += load_quad(end);
        const float* const leave_until = line + std::ptrdiff_t{new_begin} * kPixel;
        for (; begin != leave_until; begin += kPixel) sum -= load_quad(begin);
        return new_end - new_begin;
    }
};

// What the windows of kMost lines hold at the pixels of a chunk.
template <int kMost>
struct Sums {
    Quad sum[kChunk][kMost];
    std::int32_t count[kChunk * kMost];  // those of neighbours in the frame side by side
};

// Moves the windows of `lines` lines over pixels [begin, end), two at a time so that neither waits for its
// own last sum. Distances, of the lines' pixels from `begin` on, are `step` apart along a line and `spacing`
// from line to line. Those of neighbours differ by one at most, so a window never moves back and always holds
// its centre.
template <bool kAreColumns, int kMost, class Steps>
void advance(Window* windows, int lines, std::int32_t length, const Steps* distance, std::ptrdiff_t step,
             std::ptrdiff_t spacing, std::int32_t begin, std::int32_t end, Sums<kMost>& sums) {
    static_assert(kMost % 2 == 0);
    for (int l = 0; l < lines; l += 2) {
        // An odd line out goes twice.
        const Steps* const one_distance = distance + l * spacing;
        const Steps* const other_distance = l + 1 < lines ? one_distance + spacing : one_distance;
        Window one = windows[l];
        Window other = l + 1 < lines ? windows[l + 1] : one;
        const auto move = [&](Window& window, std::int32_t i, Steps reach, int line) {
            sums.count[kAreColumns ? (i - begin) * kMost + line : line * kChunk + (i - begin)] =
                window.move(length, i, reach);
            sums.sum[i - begin][line] = window.sum;
        };
        for (std::int32_t i = begin; i < end; ++i) {
            move(one, i, one_distance[(i - begin) * step], l);
            move(other, i, other_distance[(i - begin) * step], l + 1);
        }
        windows[l] = one;
        windows[l + 1] = other;
    }
}

using Planes = std::array<float*, 3>;

// The pixels' red, green and blue and four zeros.
[[gnu::always_inline]] inline void get_four(const Planes& planes, std::size_t at, Quad (&pixels)[4]) {
    for (std::size_t k = 0; k < 3; ++k) pixels[k] = load_quad(planes[k] + at);
    pixels[3] = Quad{};
    transpose(pixels);
}

// As get_four, but of the last n pixels of a row, and zeros.
void get_last(const Planes& planes, std::size_t at, int n, Quad (&pixels)[4]) {
    for (int i = 0; i < 4; ++i) {
        pixels[i] = Quad{};
        if (i >= n) continue;
        for (int k = 0; k < 3; ++k)
            pixels[i][k] = planes[static_cast<std::size_t>(k)][at + static_cast<std::size_t>(i)];
    }
}

// The means of four windows whose sums are `spacing` apart, half a count added to a sum before it is divided.
[[gnu::always_inline]] inline void means(const Quad* sum, const std::int32_t* count, int spacing,
                                         Quad (&result)[4]) {
    for (int k = 0; k < 4; ++k) result[k] = sum[k * spacing];
    transpose(result);
    IntQuad counts;
    __builtin_memcpy(&counts, count, sizeof counts);
    const Quad half = __builtin_convertvector(counts / 2, Quad);
    const Quad divisor = __builtin_convertvector(counts, Quad);
    for (int k = 0; k < 3; ++k) result[k] = (result[k] + half) / divisor;
}

[[gnu::always_inline]] inline void put_four(const Quad* sum, const std::int32_t* count, int spacing,
                                            const Planes& planes, std::size_t at) {
    Quad result[4];
    means(sum, count, spacing, result);
    for (std::size_t k = 0; k < 3; ++k) store_quad(planes[k] + at, result[k]);
}

void put_last(const Quad* sum, const std::int32_t* count, int spacing, const Planes& planes, std::size_t at,
              int n) {
    Quad result[4];
    means(sum, count, spacing, result);
    for (std::size_t k = 0; k < 3; ++k) {
        for (int i = 0; i < n; ++i) planes[k][at + static_cast<std::size_t>(i)] = result[k][i];
    }
}

template <class Steps>
void smooth_rows(int width, int begin, int end, const Steps* distance, const Planes& planes) {
    const auto stride = static_cast<std::size_t>(width);
    const auto first = static_cast<std::size_t>(begin) * stride;
    const auto copy = std::make_unique_for_overwrite<float[]>(pitch(width) * kRows);
    const int rows = end - begin;
    Window windows[kRows];
    for (int l = 0; l < rows; ++l)
        windows[l] = Window(copy.get() + static_cast<std::size_t>(l) * pitch(width));
    for (int l = 0; l < rows; ++l) {
        float* to = copy.get() + static_cast<std::size_t>(l) * pitch(width);
        const std::size_t at = first + static_cast<std::size_t>(l) * stride;
        Quad pixels[4];
        int x = 0;
        for (; x + 4 <= width; x += 4, to += std::ptrdiff_t{4} * kPixel) {
            get_four(planes, at + static_cast<std::size_t>(x), pixels);
            for (int k = 0; k < 4; ++k) store_quad(to + k * kPixel, pixels[k]);
        }
        get_last(planes, at + static_cast<std::size_t>(x), width - x, pixels);
        for (int k = 0; k < width - x; ++k) store_quad(to + k * kPixel, pixels[k]);
    }
    Sums<kRows> sums{};
    for (int x = 0; x < width; x += kChunk) {
        const int chunk = std::min(kChunk, width - x);
        advance<false>(windows, rows, width, distance + first + static_cast<std::size_t>(x), 1, width, x,
                       x + chunk, sums);
        for (int l = 0; l < rows; ++l) {
            const std::size_t at = first + static_cast<std::size_t>(l) * stride + static_cast<std::size_t>(x);
            int i = 0;
            for (; i + 4 <= chunk; i += 4) {
                put_four(&sums.sum[i][l], &sums.count[l * kChunk + i], kRows, planes,
                         at + static_cast<std::size_t>(i));
            }
            if (i < chunk) {
                put_last(&sums.sum[i][l], &sums.count[l * kChunk + i], kRows, planes,
                         at + static_cast<std::size_t>(i), chunk - i);
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
    Window windows[kColumns];
    for (int l = 0; l < columns; ++l) {
        windows[l] = Window(copy.get() + static_cast<std::size_t>(l) * pitch(height));
    }
    for (int y = 0; y < height; ++y) {
        if (y + kAhead < height) {
            for (const float* plane : planes) {
                __builtin_prefetch(plane + at(0, y + kAhead));
                __builtin_prefetch(plane + at(columns - 1, y + kAhead));
            }
        }
        float* const to = copy.get() + std::ptrdiff_t{y} * kPixel;
        Quad pixels[4];
        for (int x = 0; x < columns; x += 4) {
            const int n = std::min(4, columns - x);
            if (n == 4) {
                get_four(planes, at(x, y), pixels);
            } else {
                get_last(planes, at(x, y), n, pixels);
            }
            for (int k = 0; k < n; ++k)
                store_quad(to + static_cast<std::size_t>(x + k) * pitch(height), pixels[k]);
        }
    }
    Sums<kColumns> sums{};
    for (int y = 0; y < height; y += kChunk) {
        const int chunk = std::min(kChunk, height - y);
        // Rows of some widths share a set of the cache, so each is touched once: for all its columns.
        Steps near[kChunk * kColumns];
        for (int i = 0; i < chunk; ++i) std::copy_n(distance + at(0, y + i), columns, near + i * kColumns);
        advance<true>(windows, columns, height, near, kColumns, 1, y, y + chunk, sums);
        for (int i = 0; i < chunk; ++i) {
            for (int x = 0; x < columns; x += 4) {
                const Quad* const sum = &sums.sum[i][x];
                const std::int32_t* const count = &sums.count[i * kColumns + x];
                if (columns - x >= 4) {
                    put_four(sum, count, 1, planes, at(x, y + i));
                } else {
                    put_last(sum, count, 1, planes, at(x, y + i), columns - x);
                }
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
        loop(0, height_, kRows,
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
