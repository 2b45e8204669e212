// Memory of one channel's pixels.
#pragma once

#include <cstddef>
#include <memory>

namespace veloxa {

// Planes are shared: a grey file has one plane for red, green and blue.
using Plane = std::shared_ptr<float[]>;

// A plane of undefined pixels. Large ones lie on huge pages, which spares most of the page faults of fresh
// memory, and go back to the system at once when the last owner lets go.
Plane make_plane(std::size_t pixels);

}  // namespace veloxa
