// Takes pixels from one colour space to another.
#pragma once

#include <OpenColorIO/OpenColorIO.h>

#include <cstddef>

#include "shot/image/Image.h"

namespace veloxa {

// In single precision, with the library's exact functions rather than its fast ones. A pixel's bits depend on
// its values alone. Any thread may apply; copies share what they need.
class ColourConversion {
  public:
    ColourConversion() = default;  // changes nothing
    explicit ColourConversion(const OCIO_NAMESPACE::ConstProcessorRcPtr& processor);

    bool changes() const { return cpu_ != nullptr; }
    // Red, green, blue and something that stays as it is, pixel after pixel.
    void apply(float* rgba, std::size_t pixels) const;

  private:
    OCIO_NAMESPACE::ConstCPUProcessorRcPtr cpu_;
};

// What an image's alpha has to do with its colour.
enum class AlphaIs {
    kApart,       // colour is as if there were none: plates, composites, straight cuts
    kMultiplied,  // colour is multiplied by it: divided, converted and multiplied again where it is between 0
                  // and 1
};

// Converts red, green and blue in place, on the library's threads. A plane that channels share becomes one
// for each; a channel that is absent counts as 0. Alpha stays.
void convert(Image& image, const ColourConversion& conversion, AlphaIs alpha);

}  // namespace veloxa
