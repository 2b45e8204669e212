// Makes a clean plate of a locked-off shot: per pixel the median of what the backing looked like where the
// node's region says that it is clear, and the node's own interpolation where it never was.
//
// Samples are held for a strip of rows over all frames, as many rows as the budget allows; each strip reads
// the frames anew. So memory does not grow with the sequence and the median stays exact.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "shot/cleanplate/Registration.h"
#include "shot/frames/FrameLoader.h"
#include "shot/node/ImageSource.h"
#include "shot/node/Node.h"
#include "shot/setup/ScreenChoice.h"

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

struct CleanPlateLimits {
    int threads = 0;
    std::size_t budget = std::size_t{1} << 30;  // bytes of samples; never less than a row's
    ColourOptions colour{};
};

struct CleanPlateReport {
    int frames = 0;      // that were used
    int failed = 0;      // that could not be; each was warned of
    std::string region;  // the node's member that said what is clear
    double seen = 0.0;   // share of the pixels that some frame showed clear
    int compared = 0;    // frames whose shift against the first could be measured
    Shift largest;
    int largest_frame = 0;
};

class CleanPlateMaker {
  public:
    // Reads the first frame that can be read. Throws Error when none can.
    CleanPlateMaker(const PictureName& name, const FrameRange& frames, const CleanPlateLimits& limits,
                    const Caller& caller);

    // To be set up before make.
    Node& node() { return node_; }
    // The first frame that could be read.
    NamedImage first() const { return {first_.image, name_.at(frame_number_)}; }

    // Throws Error when no frame shows clear backing, Interrupted. Warns of frames that cannot be used
    // and of those that are shifted.
    Image make();
    const CleanPlateReport& report() const { return report_; }

  private:
    // The clear pixels of the image's box, 1 or 0; only the rows asked for.
    using Mask = std::vector<std::uint8_t>;

    LoadedInput load(int frame);
    void find_region();
    Mask clear_pixels(const LoadedInput& frame, const Zo::Image::Box& rows);
    void sample_strip(const Zo::Image::Box& strip, bool first_pass);
    void compare_with_first(const Image& image, const Mask& clear, int frame);
    void fill(const Mask& seen);

    PictureName name_;
    CleanPlateLimits limits_;
    Caller caller_;
    FrameLoader loader_;
    LoadedInput first_;
    int frame_number_ = 0;
    std::vector<int> frames_;  // those that can be used, as far as is known
    ImageSource source_;       // the node's inputs outlive it
    ImageSource partial_, seen_mask_;
    Node node_;
    Zo::Image::Renderer renderer_;
    Zo::Image::Iop* region_ = nullptr;
    Image plate_;
    Mask seen_;
    BackingDetail first_detail_;
    CleanPlateReport report_;
    int done_ = 0, to_do_ = 0;  // frames, each once a strip
};

}  // namespace veloxa
