#include "shot/compare/Compare.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "shot/Errors.h"
#include "shot/files/ImageFile.h"

namespace veloxa {

using namespace Zo::Image;

namespace {

double distance(float a, float b) {
    if (a == b || (std::isnan(a) && std::isnan(b))) return 0.0;
    if (std::isnan(a) || std::isnan(b)) return std::numeric_limits<double>::infinity();
    return std::abs(static_cast<double>(a) - static_cast<double>(b));
}

float sample(const Image& image, Channel c, int x, int y) {
    const Box& box = image.info.box;
    if (!image.has(c) || x < box.x || x >= box.r || y < box.y || y >= box.t) return 0.0f;
    return image.line(c, y)[x - box.x];
}

std::string channel_name(Channel c) {
    return std::string(1, "RGBA"[c - kRed]);
}

ChannelSet wanted_channels(const std::string& channel, const ChannelSet& present) {
    if (channel.empty()) return present;
    for (const Channel c : kMaskRgba) {
        if (channel != channel_name(c)) continue;
        if (!present.has(c)) throw Error("neither image has channel " + channel);
        return c;
    }
    throw UsageError("--channel " + channel + ": expected R, G, B or A");
}

}  // namespace

void Difference::add(const Difference& other) {
    largest = std::max(largest, other.largest);
    sum += other.sum;
    sum_squares += other.sum_squares;
    count += other.count;
}

double Difference::psnr() const {
    return count > 0 ? 10.0 * std::log10(static_cast<double>(count) / sum_squares)
                     : std::numeric_limits<double>::infinity();
}

Difference difference(const Image& a, const Image& b, Channel c) {
    Box box = a.info.box;
    box.merge(b.info.box);
    Difference total;
    for (int y = box.y; y < box.t; ++y) {
        for (int x = box.x; x < box.r; ++x) {
            const double d = distance(sample(a, c, x, y), sample(b, c, x, y));
            total.add({d, d, d * d, 1});
        }
    }
    return total;
}

Comparison compare_files(const PictureName& first, const PictureName& second, const std::string& channel,
                         const Caller& caller) {
    const Image a = read_image(first.name(), first.choice(), caller.abort);
    const Image b = read_image(second.name(), second.choice(), caller.abort);
    for (const PictureName* name : {&first, &second}) {
        warn_of_parts(name->name(), name->choice(), false, caller);
    }
    if (a.info.format.box != b.info.format.box) {
        throw Error(second.name(), "is " + size_text(b.info.format.box) + ", but " + first.name() + " is " +
                                       size_text(a.info.format.box));
    }
    Comparison result;
    for (const Channel c : wanted_channels(channel, a.info.channels + b.info.channels)) {
        result.channels.emplace_back(channel_name(c), difference(a, b, c));
        result.overall.add(result.channels.back().second);
    }
    return result;
}

}  // namespace veloxa
