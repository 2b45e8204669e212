// From the values of a picture to what the screen shows.
#pragma once

#include <string>
#include <vector>

#include "shot/colour/ColourConfig.h"

namespace veloxa::viewer {

// Immutable and cheap to copy; any thread.
class DisplayTransform {
  public:
    DisplayTransform() = default;  // values as they are
    explicit DisplayTransform(ColourConversion conversion) : conversion_(std::move(conversion)) {}

    // Red, green, blue and something that stays, pixel after pixel, to 0 to 1 for the screen.
    void apply(float* rgba, std::size_t pixels) const { conversion_.apply(rgba, pixels); }
    bool changes() const { return conversion_.changes(); }

  private:
    ColourConversion conversion_;
};

}  // namespace veloxa::viewer
