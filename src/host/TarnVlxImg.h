// A four-plane image over a tile of the host, or over four arrays of the caller.
//
// Over a tile the four values are alpha, red, green, blue, and the image is for reading only; x and y count
// from the tile's corner. Over arrays (width x height, bottom row first) they are planes 1 to 4.
// Owns neither; both must outlive it.
#pragma once

#include <array>
#include <cstddef>

#include "ZoImage/GeneralTile.h"
#include "framework/VlxImg.h"

class TarnVlxImg final : public VlxImg {
  public:
    explicit TarnVlxImg(const Zo::Image::GeneralTile& tile);
    TarnVlxImg(std::int32_t width, std::int32_t height, float* plane1, float* plane2, float* plane3,
               float* plane4);

    std::int32_t width() const override { return width_; }
    std::int32_t height() const override { return height_; }
    void get_pixel(std::int32_t x, std::int32_t y, float& a, float& b, float& c, float& d) const override;
    void set_pixel(std::int32_t x, std::int32_t y, float a, float b, float c, float d) override;

  private:
    std::size_t index(std::int32_t x, std::int32_t y) const;

    const Zo::Image::GeneralTile* tile_ = nullptr;
    std::int32_t width_;
    std::int32_t height_;
    std::array<float*, 4> planes_{};
};
