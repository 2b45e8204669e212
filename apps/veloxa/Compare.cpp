#include "Compare.h"

#include <algorithm>
#include <cmath>
#include <limits>

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

}  // namespace

void Difference::add(double d) {
    largest = std::max(largest, d);
    sum += d;
    sum_squares += d * d;
    ++count;
}

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

const char* channel_name(Channel c) {
    switch (c) {
        case kRed:
            return "R";
        case kGreen:
            return "G";
        case kBlue:
            return "B";
        case kAlpha:
            return "A";
        default:
            return "";
    }
}

Difference difference(const Image& a, const Image& b, Channel c) {
    Box box = a.info.box;
    box.merge(b.info.box);
    Difference total;
    for (int y = box.y; y < box.t; ++y) {
        for (int x = box.x; x < box.r; ++x) total.add(distance(sample(a, c, x, y), sample(b, c, x, y)));
    }
    return total;
}

}  // namespace veloxa
