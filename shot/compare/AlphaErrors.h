// How far an alpha is from the true one, pixel by pixel, by the measures of the alpha matting benchmark:
// Rhemann et al., A Perceptually Motivated Online Benchmark for Image Matting, 2009.
#pragma once

#include <cstddef>
#include <vector>

namespace veloxa {

// One channel over a whole display window, bottom row first; 1 is opaque.
struct Matte {
    int width = 0;
    int height = 0;
    std::vector<float> values;  // width * height

    float at(int x, int y) const {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

// The squared difference of the lengths of both gradients, each by derivatives of a Gaussian of deviation 1.4
// whose filter has the norm 1. Edge pixels repeat.
std::vector<float> gradient_errors(const Matte& result, const Matte& truth);

// The difference of how well pixels are connected to what both take for opaque. A pixel's level is the
// largest of 0, 0.1, ... 1 at which it belongs to the largest 4-connected area where both are at least that
// high, without having left it at a lower one; alpha counts as loose by how much it is above the level, from
// 0.15 on.
std::vector<float> connectivity_errors(const Matte& result, const Matte& truth);

}  // namespace veloxa
