#include "shot/files/FileRows.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <type_traits>

namespace veloxa {

using namespace Zo::Image;

namespace {

// Integers of fewer bits fill their type with their uppermost bits once more, as readers do.
template <class Sample>
void convert(const float* in, Sample* out, std::size_t count, int bits) {
    if constexpr (std::is_integral_v<Sample>) {
        constexpr int kBits = std::numeric_limits<Sample>::digits;
        if (bits > 0 && bits < kBits) {
            const unsigned white = (1U << bits) - 1;
            for (std::size_t n = 0; n < count; ++n) {
                const unsigned value = to_number(in[n], white);
                out[n] = static_cast<Sample>(value << (kBits - bits) | value >> (2 * bits - kBits));
            }
            return;
        }
    }
    for (std::size_t n = 0; n < count; ++n) out[n] = from_float<Sample>(in[n]);
}

// Whether alpha is not in the colour of such a file, by what it is read as elsewhere.
bool is_straight(std::string_view format) {
    for (const std::string_view one : {"bmp", "gif", "heif", "ico", "jpeg2000", "png", "targa", "webp"}) {
        if (format == one) return true;
    }
    return false;
}

bool holds_grey(std::string_view format) {
    for (const std::string_view one : {"gif", "hdr", "heif", "iff", "webp"}) {
        if (format == one) return false;
    }
    return true;
}

void divide(float* colour, const float* alpha, std::size_t count) {
    for (std::size_t n = 0; n < count; ++n) colour[n] = alpha[n] > 0.0f ? colour[n] / alpha[n] : 0.0f;
}

}  // namespace

bool keeps_alpha(const PictureOutput& output, const WriteOptions& options) {
    // The library's DPX of 10 bits has four channels right in rows of some lengths only.
    const bool needless = is_straight(output.format_name()) || options.bits == 10;
    return output.supports("alpha") && !(options.alpha == Alpha::kOpaque && needless);
}

FileRows::FileRows(const Image& image, const PictureOutput& output, const WriteOptions& options)
    : image_(image), bits_(options.bits) {
    const std::string_view format = output.format_name();
    const bool straight = is_straight(format);
    for (const Channel c : image.info.channels& kMaskRgba) {
        if (!image.has(c)) continue;
        const bool alone = !image.has(kRed);
        if (alone && !holds_grey(format)) channels_ = {kAlpha, kAlpha};
        if (c != kAlpha || alone || keeps_alpha(output, options)) channels_.push_back(c);
    }
    divides_ = straight && options.alpha == Alpha::kPremultiplied && image.has(kAlpha) &&
               channels_.size() > 1 && channels_.back() == kAlpha;
    box_ = format == "openexr" ? image.info.box : image.info.format.box;
}

FileRows::FileRows(const Image& image, Alpha alpha) : image_(image), box_(image.info.format.box) {
    for (const Channel c : kMaskRgba) {
        if (image.has(c) && (c != kAlpha || alpha != Alpha::kOpaque || !image.has(kRed)))
            channels_.push_back(c);
    }
    divides_ = alpha == Alpha::kPremultiplied && channels_.size() == 4;
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
    std::vector<float> divided(divides_ ? count : 0);
    for (std::size_t c = 0; c < stride; ++c) {
        const float* line = image_.line(channels_[c], y) + (x0 - from.x);
        if (divides_ && channels_[c] != kAlpha) {
            std::copy_n(line, count, divided.data());
            divide(divided.data(), image_.line(kAlpha, y) + (x0 - from.x), count);
            line = divided.data();
        }
        convert(line, samples, count, bits_);
        Sample* out = row + static_cast<std::size_t>(x0 - box_.x) * stride + c;
        for (std::size_t x = 0; x < count; ++x) out[x * stride] = samples[x];
    }
}

template void FileRows::fill(int, std::uint8_t*, std::uint8_t*) const;
template void FileRows::fill(int, std::uint16_t*, std::uint16_t*) const;
template void FileRows::fill(int, Half*, Half*) const;
template void FileRows::fill(int, float*, float*) const;

}  // namespace veloxa
