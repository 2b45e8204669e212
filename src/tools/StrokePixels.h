// Pixels that stand for a stroke: of everything under its areas the most extreme in each direction that the
// kernels look in, so that what holds for them holds for what lies between.
#pragma once

#include <array>
#include <vector>

#include "ZoImage/Iop.h"
#include "ZoImage/Render.h"
#include "panel/VeloxaSample.h"
#include "tools/StrokeAreas.h"

// Thrown where the user gave a tool up.
struct GivenUp {};
// Throws GivenUp when the render was aborted.
void render_or_give_up(Zo::Image::Renderer& renderer, Zo::Image::Iop& image, const Zo::Image::Box& box,
                       Zo::Image::ChannelSet channels, const Zo::Image::Renderer::Sink& sink);

// The same place in two images.
struct StrokePixel {
    VeloxaSample::Sample first{};
    VeloxaSample::Sample second{};
};

// Pixels of the areas, as the grid thins them out, whose alpha in `keep` is not 0; of all without it.
// `second` may be null. Those that are not finite are left out. Validation thread; renders what it reads, or
// throws GivenUp.
std::vector<StrokePixel> read_pixels(Zo::Image::Iop& first, Zo::Image::Iop* second, Zo::Image::Iop* keep,
                                     const StrokeAreas& areas, const Zo::Image::AbortFlag* abort);

// Where in the list the least and greatest red, green, blue, alpha and difference of two colours are;
// ascending, each place once.
std::vector<std::size_t> extremes(const std::vector<VeloxaSample::Sample>& colors);
