// Alpha of pixels whose subject's colour F is known but for a spread: the likeliest alpha of
// plate - backing = alpha * (F - backing) + noise, where F has a mean m and a covariance Q, so that the noise
// is N + alpha^2 Q (after Chuang, Curless, Salesin, Szeliski: A Bayesian approach to digital matting, 2001;
// here F is integrated out). Two rounds from a first guess, each a weighted least square.
#pragma once

#include <array>
#include <cstddef>

#include "lanes/LaneKernel.h"

inline constexpr int kSolveRounds = 2;

// Pixels to solve, n of each. Colours in light.
struct UnmixPixels {
    std::array<const float*, 3> beyond;  // plate less backing
    std::array<const float*, 3> backing;
    const float* guess;  // alpha, 0 to 1
};

struct UnmixNoise {
    std::array<float, 6> covariance;  // rr, rg, rb, gg, gb, bb
};

struct Solved {
    float* alpha;
    float* cost;      // chi squared and the logarithm of the spread's determinant: -2 log likelihood
    float* by_noise;  // variance of alpha by noise,
    float* variance;  // and by noise and the colour's spread
};

// One colour for all: m = mean + share * backing.
struct CommonColour {
    std::array<float, 3> mean;
    float share;
    std::array<float, 6> covariance;
};
using SolveCommon = void(const UnmixNoise& noise, const UnmixPixels& pixels, const CommonColour& colour,
                         const Solved& out, std::size_t n);
LANE_KERNEL(SolveCommon, solve_common);

// A colour for each pixel.
struct OwnColours {
    std::array<const float*, 3> mean;
    std::array<const float*, 6> covariance;
};
using SolveOwn = void(const UnmixNoise& noise, const UnmixPixels& pixels, const OwnColours& colours,
                      const Solved& out, std::size_t n);
LANE_KERNEL(SolveOwn, solve_own);
