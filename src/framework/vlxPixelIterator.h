// A cursor over the four channels of an image: 0 red, 1 green, 2 blue, 3 alpha.
// For code that is not hot; kernels that are take pointers to spans.
#pragma once

#include <cstdint>

class vlxPixelIterator {
  public:
    virtual void set_position(std::int32_t x, std::int32_t y) = 0;
    virtual void set_row(std::int32_t y) = 0;
    virtual void next_row() = 0;
    virtual float get(int channel) const = 0;
    virtual void set(int channel, float value) = 0;
    virtual void next_pixel() = 0;
    virtual ~vlxPixelIterator() = default;
};
