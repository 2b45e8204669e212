#include "picture/Sampler.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

// Along one axis.
struct Extent {
    int low, high;
};

struct AxisOf {
    int size;          // of the area
    Extent pixels;     // the image's own
    double scale;      // the picture's pixels per one of those
    double low, high;  // what they cover of the picture
    double frame_low, frame_high;
};

// The picture's frame ends where its stand-in's last pixel may reach beyond.
AxisOf axis_of(int size, Extent pixels, Extent format, Extent frame, double scale) {
    const bool known = frame.low < frame.high;
    AxisOf axis{size,
                pixels,
                scale,
                pixels.low * scale,
                pixels.high * scale,
                format.low * scale,
                format.high * scale};
    if (!known) return axis;
    if (pixels.low == format.low) axis.low = frame.low;
    if (pixels.high == format.high) axis.high = frame.high;
    axis.frame_low = frame.low;
    axis.frame_high = frame.high;
    return axis;
}

// `place` is where in the picture a place of the area is.
template <class Place>
SampledAxis sampled(const AxisOf& axis, const Place& place) {
    SampledAxis to;
    const auto size = static_cast<std::size_t>(axis.size);
    to.first.resize(size);
    to.count.resize(size);
    to.frame.resize(size);
    to.mean = std::abs(place(1.0) - place(0.0)) > 2.0 * axis.scale;
    const auto pixel = [&](double at) {
        return static_cast<int>(std::floor(std::clamp(at / axis.scale, -1e9, 1e9)));
    };
    for (int n = 0; n < axis.size; ++n) {
        const auto i = static_cast<std::size_t>(n);
        const double middle = place(n + 0.5);
        to.frame[i] = middle >= axis.frame_low && middle < axis.frame_high ? 1 : 0;
        if (!(middle >= axis.low && middle < axis.high)) continue;
        int first = pixel(middle);
        int last = first;
        if (to.mean) {
            const auto [low, high] = std::minmax({place(n), place(n + 1.0)});
            first = pixel(low + 0.5 * axis.scale);
            last = pixel(high + 0.5 * axis.scale) - 1;
        }
        first = std::clamp(first, axis.pixels.low, axis.pixels.high - 1);
        last = std::clamp(last, first, axis.pixels.high - 1);
        to.first[i] = first - axis.pixels.low;
        to.count[i] = last - first + 1;
        if (to.begin == to.end) to.begin = n;
        to.end = n + 1;
    }
    return to;
}

// Of each column the sum of so many rows. Read but once and written but once where it matters: pictures are
// larger than the processor's caches.
void add_rows(const float* top, std::size_t stride, int rows, std::size_t columns, float* sums) {
    const float* const second = top + stride;
    const float* const third = second + stride;
    if (rows == 1) {
        std::copy_n(top, columns, sums);
    } else if (rows == 2) {
        for (std::size_t x = 0; x < columns; ++x) sums[x] = top[x] + second[x];
    } else {
        for (std::size_t x = 0; x < columns; ++x) sums[x] = top[x] + second[x] + third[x];
    }
    for (int n = 3; n < rows; ++n) {
        const float* const other = top + static_cast<std::size_t>(n) * stride;
        for (std::size_t x = 0; x < columns; ++x) sums[x] += other[x];
    }
}

}  // namespace

Sampler::Sampler(const ShownPicture& picture, const Geometry& geometry) : image_(*picture.image) {
    const Box& box = image_.info.box;
    const Box& format = image_.info.format.box;
    const Box& frame = picture.frame;
    columns_ = sampled(
        axis_of(geometry.width, {box.x, box.r}, {format.x, format.r}, {frame.x, frame.r}, picture.scale),
        [&](double x) {
            return geometry.to_picture({x, 0.0}).x;
        });
    rows_ = sampled(
        axis_of(geometry.height, {box.y, box.t}, {format.y, format.t}, {frame.y, frame.t}, picture.scale),
        [&](double y) {
            return geometry.to_picture({0.0, y}).y;
        });
    counts_.assign(columns_.count.begin(), columns_.count.end());
    if (columns_.begin == columns_.end) return;
    const auto shown =
        std::minmax_element(columns_.count.begin() + columns_.begin, columns_.count.begin() + columns_.end);
    fewest_ = *shown.first;
    most_ = *shown.second;
    straight_ = !columns_.mean;
    for (auto x = static_cast<std::size_t>(columns_.begin) + 1; std::cmp_less(x, columns_.end); ++x) {
        straight_ = straight_ && columns_.first[x] == columns_.first[x - 1] + 1;
    }
}

bool Sampler::same(int row, int other) const {
    const auto a = static_cast<std::size_t>(row);
    const auto b = static_cast<std::size_t>(other);
    return rows_.count[a] == rows_.count[b] && (rows_.count[a] == 0 || rows_.first[a] == rows_.first[b]) &&
           rows_.frame[a] == rows_.frame[b];
}

const float* Sampler::line(Channel c, int row) const {
    return image_.line(c, image_.info.box.y + rows_.first[static_cast<std::size_t>(row)]);
}

const float* Sampler::read(Channel c, int row, float absent, Scratch& scratch, float* out) const {
    const auto width = static_cast<int>(columns_.first.size());
    if (!has(c)) {
        std::fill_n(out, width, absent);
        return out;
    }
    const auto [begin, end] = std::pair(columns_.begin, columns_.end);
    if (rows_.count[static_cast<std::size_t>(row)] == 0 || begin == end) {
        std::fill_n(out, width, 0.0f);
        return out;
    }
    if (columns_.mean || rows_.mean) {
        average(c, row, scratch, out);
    } else {
        const float* const from = line(c, row);
        const int* const first = columns_.first.data();
        if (straight_ && begin == 0 && end == width) return from + first[0];
        if (straight_) {
            std::copy_n(from + first[begin], end - begin, out + begin);
        } else {
            for (int x = begin; x < end; ++x) out[x] = from[first[x]];
        }
    }
    std::fill(out, out + begin, 0.0f);
    std::fill(out + end, out + width, 0.0f);
    return out;
}

void Sampler::average(Channel c, int row, Scratch& scratch, float* out) const {
    const auto [begin, end] = std::pair(columns_.begin, columns_.end);
    const int* const first = columns_.first.data();
    const int* const count = columns_.count.data();
    const int from = first[begin];
    const int width = first[end - 1] + count[end - 1] - from;
    const auto columns = static_cast<std::size_t>(width);
    const int rows = rows_.count[static_cast<std::size_t>(row)];
    scratch.sums.resize(columns + 1);  // one more, for threes that are read where two are meant
    float* const sums = scratch.sums.data();
    add_rows(line(c, row) + from, image_.width(), rows, columns, sums);
    if (fewest_ >= 2 && most_ <= 3) {
        for (int x = begin; x < end; ++x) {
            const float* const v = sums + (first[x] - from);
            out[x] = v[0] + v[1] + (count[x] > 2 ? v[2] : 0.0f);
        }
    } else {
        for (int x = begin; x < end; ++x) {
            const float* const v = sums + (first[x] - from);
            float sum = v[0];
            for (int n = 1; n < count[x]; ++n) sum += v[n];
            out[x] = sum;
        }
    }
    const auto each = static_cast<float>(rows);
    for (int x = begin; x < end; ++x) out[x] /= counts_[static_cast<std::size_t>(x)] * each;
}

void Sampler::mark(Channel c, int row, Scratch& scratch, std::uint32_t* marks) const {
    const auto [begin, end] = std::pair(columns_.begin, columns_.end);
    if (!has(c) || rows_.count[static_cast<std::size_t>(row)] == 0 || begin == end) return;
    const int* const first = columns_.first.data();
    const int from = first[begin];
    const int* const count = columns_.count.data();
    const int width = first[end - 1] + count[end - 1] - from;
    const auto columns = static_cast<std::size_t>(width);
    scratch.marks.assign(columns, kNoMark);
    for (int n = 0; n < rows_.count[static_cast<std::size_t>(row)]; ++n) {
        const float* const v = line(c, row) + static_cast<std::size_t>(n) * image_.width() + from;
        for (std::size_t x = 0; x < columns; ++x) scratch.marks[x] |= mark_of(v[x]);
    }
    if (straight_) {
        for (std::size_t x = 0; x < columns; ++x)
            marks[static_cast<std::size_t>(begin) + x] |= scratch.marks[x];
        return;
    }
    for (int x = begin; x < end; ++x) {
        const std::uint32_t* const under = scratch.marks.data() + (first[x] - from);
        for (int n = 0; n < count[x]; ++n) marks[x] |= under[n];
    }
}

}  // namespace veloxa::viewer
