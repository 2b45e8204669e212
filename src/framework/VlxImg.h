// An image of four planes with access to single pixels, for code that must not know the host's types.
// (0, 0) is the first pixel of the bottom row. Which plane holds which channel is the image's own matter.
#pragma once

#include <cstdint>

class VlxImg {
  public:
    virtual ~VlxImg() = default;

    virtual std::int32_t width() const = 0;
    virtual std::int32_t height() const = 0;
    virtual void get_pixel(std::int32_t x, std::int32_t y, float& a, float& b, float& c, float& d) const = 0;
    virtual void set_pixel(std::int32_t x, std::int32_t y, float a, float b, float c, float d) = 0;
};
