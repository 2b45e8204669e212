// How an alpha changes over time against how the true one does.
#pragma once

#include <cstdint>
#include <vector>

#include "shot/compare/AlphaErrors.h"

namespace veloxa {

// Takes frames in their order, all of one size. One thread at a time.
class Steadiness {
  public:
    // counted: 0 for a pixel that is to be left out, of this step and the one after, and of the still places.
    void add(const Matte& result, const Matte& truth, const std::vector<char>& counted);

    // The mean over steps of sqrt(mean over pixels of the squared difference of both changes); 0 without a
    // step.
    double dtssd() const { return steps_ > 0 ? sum_ / static_cast<double>(steps_) : 0.0; }

    // The mean deviation over time of the result where the truth's range is below 0.002.
    struct Still {
        std::int64_t pixels = 0;
        double deviation = 0.0;
    };
    Still still() const;

  private:
    void add_step(const Matte& result, const Matte& truth, const std::vector<char>& counted);

    std::int64_t frames_ = 0, steps_ = 0;
    double sum_ = 0.0;
    Matte result_, truth_;  // of the frame before
    std::vector<char> counted_before_, counted_always_;
    std::vector<float> low_, high_;      // of the truth
    std::vector<double> mean_, spread_;  // of the result: mean, sum of squared deviations from it
};

}  // namespace veloxa
