// Which pixels of a picture are under those of the area, and what they come to.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "picture/Geometry.h"
#include "picture/Shading.h"

namespace veloxa::viewer {

// What false colours tell of a sample, or of several together; what is infinite is above or below, too.
enum Mark : std::uint32_t { kNoMark = 0, kIsBelow = 1, kIsAbove = 2, kIsInfinite = 4, kIsNan = 8 };

inline std::uint32_t mark_of(float v) {
    return (v < 0.0f ? kIsBelow : 0U) | (v > 1.0f ? kIsAbove : 0U) |
           (std::abs(v) > std::numeric_limits<float>::max() ? kIsInfinite : 0U) | (v != v ? kIsNan : 0U);
}

// One direction of the area, pixel by pixel.
struct SampledAxis {
    std::vector<int> first;           // of the image's pixels that are under it, counted from its edge
    std::vector<int> count;           // of them; 0 beyond the image's pixels
    std::vector<std::uint8_t> frame;  // whether it is in the picture's frame
    int begin = 0;                    // those with pixels
    int end = 0;
    bool mean = false;  // else there is one of them at most
};

class Sampler {
  public:
    struct Scratch {
        std::vector<float> sums;
        std::vector<std::uint32_t> marks;
    };

    // The picture's image stays alive.
    Sampler(const ShownPicture& picture, const Geometry& geometry);

    const SampledAxis& columns() const { return columns_; }
    const SampledAxis& rows() const { return rows_; }
    bool has(Zo::Image::Channel c) const { return image_.has(c); }
    // Whether the area's two rows show the same pixels.
    bool same(int row, int other) const;

    // A row of the area, from its first column on: into `out` or straight out of the image. Beyond the
    // image's pixels it is 0; a channel that is absent is `absent` throughout.
    const float* read(Zo::Image::Channel c, int row, float absent, Scratch& scratch, float* out) const;
    // Adds the marks of that row's samples, each one under a pixel of the area.
    void mark(Zo::Image::Channel c, int row, Scratch& scratch, std::uint32_t* marks) const;

  private:
    const float* line(Zo::Image::Channel c, int row) const;
    void average(Zo::Image::Channel c, int row, Scratch& scratch, float* out) const;

    const Image& image_;
    SampledAxis columns_, rows_;
    std::vector<float> counts_;  // of columns, as floats
    int fewest_ = 0;             // of them
    int most_ = 0;
    bool straight_ = false;  // every column of the area shows the one after that of the column before it
};

}  // namespace veloxa::viewer
