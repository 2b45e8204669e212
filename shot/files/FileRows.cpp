#include "shot/files/FileRows.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace veloxa {

using namespace Zo::Image;

namespace {

void convert(const float* in, float* out, std::size_t count) {
    std::copy_n(in, count, out);
}

void convert(const float* in, Half* out, std::size_t count) {
    to_half(in, out, count);
}

// NaN fails both comparisons' first side and becomes 0.
template <class T>
void convert(const float* in, T* out, std::size_t count) {
    constexpr auto kMax = static_cast<float>(std::numeric_limits<T>::max());
    for (std::size_t n = 0; n < count; ++n) {
        const float low = in[n] > 0.0f ? in[n] : 0.0f;
        const float clamped = low < 1.0f ? low : 1.0f;
        out[n] = static_cast<T>(clamped * kMax + 0.5f);
    }
}

}  // namespace

FileRows::FileRows(const Image& image, const OIIO::ImageOutput& output) : image_(image) {
    for (const Channel c : image.info.channels& kMaskRgba) {
        if (image.has(c) && (c != kAlpha || output.supports("alpha"))) channels_.push_back(c);
    }
    const bool windows = std::string_view(output.format_name()) == "openexr";
    box_ = windows ? image.info.box : image.info.format.box;
}

template <class Sample>
void FileRows::fill(int n, Sample* row, Sample* samples) const {
    const Box& from = image_.info.box;
    const int y = box_.t - 1 - n;
    const std::size_t stride = channels_.size();
    if (!from.contains(box_)) std::fill_n(row, pitch(), Sample{});
    const int x0 = std::max(box_.x, from.x);
    const int x1 = std::min(box_.r, from.r);
    if (y < from.y || y >= from.t || x0 >= x1) return;
    const auto count = static_cast<std::size_t>(x1 - x0);
    for (std::size_t c = 0; c < stride; ++c) {
        convert(image_.line(channels_[c], y) + (x0 - from.x), samples, count);
        Sample* out = row + static_cast<std::size_t>(x0 - box_.x) * stride + c;
        for (std::size_t x = 0; x < count; ++x) out[x * stride] = samples[x];
    }
}

template void FileRows::fill(int, std::uint8_t*, std::uint8_t*) const;
template void FileRows::fill(int, std::uint16_t*, std::uint16_t*) const;
template void FileRows::fill(int, Half*, Half*) const;
template void FileRows::fill(int, float*, float*) const;

}  // namespace veloxa
