// How good a key is, where the true one is known.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "shot/Caller.h"
#include "shot/compare/AlphaErrors.h"
#include "shot/compare/Compare.h"
#include "shot/compare/Steadiness.h"
#include "shot/frames/PictureName.h"

namespace veloxa {

inline constexpr std::array kRegionNames{"backing", "core", "edge", "hair", "motion", "veil"};

// Errors of the pixels of one kind, in one frame or several.
struct Score {
    std::string name;  // all, mixed (true alpha from 0.01 to 0.99), or of kRegionNames
    int frames = 0;    // that have such pixels
    Difference alpha;
    double gradient_sum = 0.0, connectivity_sum = 0.0;
    Difference composite;  // red, green and blue; of count 0 without composites

    void add(const Score& other);
    // Over all pixels of all frames.
    double mse() const {
        return alpha.count > 0 ? alpha.sum_squares / static_cast<double>(alpha.count) : 0.0;
    }
    // Sums over a frame in thousands, means over the frames.
    double sad() const { return thousands(alpha.sum); }
    double gradient() const { return thousands(gradient_sum); }
    double connectivity() const { return thousands(connectivity_sum); }

  private:
    double thousands(double sum) const { return frames > 0 ? sum / frames / 1000.0 : 0.0; }
};

// What one frame's score is made of, all of one size.
struct ScorePictures {
    Matte result, truth;                                // alpha
    std::vector<Matte> composite{}, composite_truth{};  // red, green and blue, or nothing
    std::vector<int> region{};                          // by kRegionNames, or nothing
    std::vector<char> counted{};                        // 0 for pixels that are left out, or nothing
};

// The scores all and mixed, then, given regions, those of each.
std::vector<Score> score_frame(const ScorePictures& pictures);

// Names of files or of their sequences; empty for those that are not used.
struct ScoreInputs {
    PictureName result, truth;               // alpha, or the one channel of a grey file
    PictureName composite, composite_truth;  // both or none
    PictureName regions;                     // alpha: numbers of kRegionNames
    PictureName exclude;                     // a matte; pixels above 0 do not count
};

struct ScoreReport {
    int frames = 0;
    std::vector<Score> scores;  // as above
    double dtssd = 0.0;         // this and the next of several frames
    Steadiness::Still still;
};

// Scores the files of all frames. Throws Error when one cannot be read, has another size than the truth,
// lacks the channels, or holds values that make no sense there; and Interrupted.
ScoreReport score_files(const ScoreInputs& inputs, const FrameRange& frames, const Caller& caller);

}  // namespace veloxa
