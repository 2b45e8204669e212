// Film correction of spans: how far a pixel's red lies from the local red extremes, and the shift of its
// colour by that.
//
// Values on the working scale; arithmetic in double. All pointers address n floats; outputs overlap no input.
#pragma once

#include <cstddef>
#include <span>

#include "controls/Controls.h"
#include "lanes/LaneKernel.h"

struct FilmParams {
    double strength = 0.0;  // 0 takes the distance to the nearer extreme, 1 to the farther one
    double blue = 0.0;      // shares of that distance: added to blue and green, taken from red
    double green = 0.0;
    double red = 0.0;
};

inline FilmParams film_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {percent(controls::kFilmStrength), percent(controls::kFilmCorrectionBlue),
            percent(controls::kFilmCorrectionGreen), percent(controls::kFilmCorrectionRed)};
}

// Running extremes of the lines' columns. They start from the first sample, so a NaN there stays; one that
// comes later never replaces a value.
using FilmExtreme = void(std::span<const float* const> lines, float* extreme, std::size_t n);
LANE_KERNEL(FilmExtreme, film_lowest);
LANE_KERNEL(FilmExtreme, film_highest);

struct FilmSource {
    const float* red;
    const float* green;
    const float* blue;
};

struct FilmResult {
    float* red;
    float* green;
    float* blue;
};

// Corrects the pixels whose matte is exactly 0; every other keeps its colour.
using FilmCorrect = void(const FilmParams& params, const float* lowest, const float* highest,
                         const float* matte, const FilmSource& image, const FilmResult& result,
                         std::size_t n);
LANE_KERNEL(FilmCorrect, film_correct);
