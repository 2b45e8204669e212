// Collects what the backing looks like, pixel by pixel, over the frames of a shot.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace veloxa {

// The samples of a strip of rows over a whole sequence, held as they are: kBytesPerSample each, in memory
// that is taken at once. Several threads may add to different pixels.
class PlateSamples {
  public:
    static constexpr std::size_t kBytesPerSample = 3 * sizeof(float);

    PlateSamples(std::size_t pixels, std::size_t frames)
        : frames_(frames), values_(pixels * frames * 3), counts_(pixels) {}

    // At most one sample a frame; one that is not finite is left out.
    void add(std::size_t pixel, const std::array<float, 3>& color);

    int count(std::size_t pixel) const { return counts_[pixel]; }
    // The median of each channel by itself: exact, the mean of the two in the middle for an even count. The
    // pixel must have a sample; its samples lose their order.
    std::array<float, 3> median(std::size_t pixel);

  private:
    // Channel by channel, frames_ places each.
    std::span<float> values(std::size_t pixel, std::size_t channel) {
        return {values_.data() + (pixel * 3 + channel) * frames_, static_cast<std::size_t>(counts_[pixel])};
    }

    std::size_t frames_;
    std::vector<float> values_;
    std::vector<std::int32_t> counts_;
};

}  // namespace veloxa
