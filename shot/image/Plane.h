// Memory of one channel's pixels.
#pragma once

#include <cstddef>
#include <memory>

namespace veloxa {

// Planes are shared: a grey file has one plane for red, green and blue.
using Plane = std::shared_ptr<float[]>;

// A plane of undefined pixels, from the engine's memory for frames.
Plane make_plane(std::size_t pixels);

}  // namespace veloxa
