// What is known of the backing: its colour everywhere, its noise, where the plate surely shows it.
//
// Colours are in light: what the plate's values stand for, so that a mixture is a weighted sum. Values that
// are no number count as 0 there.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "unmix/FrameCubic.h"
#include "unmix/FrameScale.h"
#include "unmix/Plane.h"

namespace unmix {

// A symmetric 3 x 3 matrix: rr, rg, rb, gg, gb, bb.
using Covariance = std::array<float, 6>;

struct BackingModel {
    FrameScale scale;
    int screen = 1;                   // the screen's primary
    std::array<int, 2> others{0, 2};  // and the two other channels

    Colours light;   // the plate, every pixel
    Colours fine;    // its means, fine
    Colours means;   // and coarse
    Colours clean;   // the clean plate in light, every pixel; empty without one
    Colours coarse;  // the backing at the coarse cells
    Colours added;   // with a clean plate: coarse, what the backing has beyond it
    Bytes sure;      // coarse: the plate shows it
    Floats shade;    // coarse: its light over what falls on it around, below 1 in shadow

    bool found = false;  // whether any pixel is sure
    Covariance noise{};  // of a pixel
    std::array<float, 3> sigma{};
    std::array<float, 3> colour{};  // of the screen: the median backing over its primary's

    std::array<float, 3> gain{1.0f, 1.0f, 1.0f};  // of this frame's light over the shot's, by its base

    // As they were found in this frame, for the shot's model.
    std::vector<double> hue;                // cells by bins of hue
    std::optional<FrameCubic::Form> cubic;  // nothing with a clean plate

    // The backing at pixels x to r - 1 of row y.
    void row(int y, int x, int r, const std::array<float*, 3>& out) const;
    // The shade there.
    void shade_row(int y, int x, int r, float* out) const;
};

}  // namespace unmix
