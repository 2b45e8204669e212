// Pixels that stand for a stroke: of everything under its box the most extreme in each direction that the
// kernels look in, so that what holds for them holds for what lies between.
#pragma once

#include <array>
#include <vector>

#include "ZoImage/Iop.h"
#include "keyer/VeloxaSample.h"

// The same place in two images.
struct StrokePixel {
    VeloxaSample::Sample first{};
    VeloxaSample::Sample second{};
};

// Pixels of the box (thinned out by decimate) whose alpha in `keep` is not 0; of all without it. `second` may
// be null. Those that are not finite are left out. Validation thread; renders what it reads.
std::vector<StrokePixel> read_pixels(Zo::Image::Iop& first, Zo::Image::Iop* second, Zo::Image::Iop* keep,
                                     const Zo::Image::Box& box);

// The pixels whose `first` has the least or greatest red, green, blue, alpha, or difference of two colours;
// in the order of the list, each once.
std::vector<StrokePixel> extremes(const std::vector<StrokePixel>& pixels);
