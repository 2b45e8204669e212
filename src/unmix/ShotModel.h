// What is measured over the frames of a shot, so that all are keyed by the same numbers, and none by the
// frame before it.
//
// Holds sums over the frames in the order that they were added; the means are what operators take. Colours
// are in light. As text: a line "veloxa-shot 1", then lines "name value...", # begins a comment; numbers read
// back to the same bits.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "unmix/BackingModel.h"
#include "unmix/Clusters.h"
#include "unmix/UnmixParams.h"

struct ShotModel {
    using Bins = std::map<std::size_t, double>;

    static constexpr std::size_t kMostRims = 8;

    // Whether a frame was measured that the two may share.
    bool fits(std::int32_t of_screen, Encoding of_encoding) const {
        return frames > 0 && screen == of_screen && encoding == of_encoding;
    }
    // Takes another one's frames in, which come after these. Both are of one screen, encoding and size.
    void add(const ShotModel& later);

    // Noise depends on the size of pixels: it is told for frames of the shot's size alone.
    std::optional<std::array<float, 3>> mean_sigma(const unmix::FrameScale& scale) const;
    std::optional<unmix::Covariance> mean_noise(const unmix::FrameScale& scale) const;
    std::array<float, 3> mean_colour() const;
    std::optional<float> mean_spill() const;                   // nothing where no frame has solids
    std::optional<unmix::FrameCubic::Form> mean_base() const;  // nothing where all have clean plates
    std::vector<double> hue_counts() const;                    // of all bins
    std::vector<float> own_counts() const;  // of all of SpillGrid, a frame's; empty where nothing was opaque

    std::string text() const;

    int frames = 0;
    int base_frames = 0;   // of these, measured without a clean plate
    int spill_frames = 0;  // with solids
    int width = 0;         // of the frames, in pixels
    int height = 0;
    std::int32_t screen = 1;
    Encoding encoding = Encoding::kStored;

    std::array<double, 3> sigma{};  // of a pixel's noise
    std::array<double, 6> noise{};
    std::array<double, 3> colour{};                // of the screen
    double spill = 0.0;                            // of the rims
    std::array<std::array<double, 12>, 3> base{};  // low and high bound, coefficients
    std::vector<unmix::ColourGroup> rims;
    Bins hue;  // cells by hue
    Bins own;  // weights by SpillGrid's cells

    std::uint64_t identity = 0;  // of the text that a node holds; set by whoever gives it to operators
};

// Reads what text() wrote. Returns what is wrong, with its line, and leaves `model` as it is; empty when
// nothing is.
std::string read_shot_model(std::string_view text, ShotModel& model);
