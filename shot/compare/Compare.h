// How far two images of one display window differ.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "shot/Caller.h"
#include "shot/frames/PictureName.h"
#include "shot/image/Image.h"

namespace veloxa {

struct Difference {
    double largest = 0.0;
    double sum = 0.0;  // of absolute differences
    double sum_squares = 0.0;
    std::int64_t count = 0;

    void add(const Difference& other);
    double mean() const { return count > 0 ? sum / static_cast<double>(count) : 0.0; }
    // In dB for a peak of 1; infinite for equal images.
    double psnr() const;
};

// Over the pixels that either image has; a missing pixel or channel counts as 0. NaN equals NaN, and is
// infinitely far from any number.
Difference difference(const Image& a, const Image& b, Zo::Image::Channel c);

struct Comparison {
    std::vector<std::pair<std::string, Difference>> channels;  // by name: R, G, B, A
    Difference overall;
};

// Compares two files, whose names stand for no frames: the channels that either has, or the one of the given
// name. Throws Error when one cannot be read or they differ in size.
Comparison compare_files(const PictureName& first, const PictureName& second, const std::string& channel,
                         const Caller& caller);

}  // namespace veloxa
